#pragma once

#import <AppKit/AppKit.h>

namespace standins {

/// The newest status item that is shown, or nil.
NSStatusItem* shownStatusItem();
/// The alert that is modal, or nil.
NSAlert* modalAlert();

}  // namespace standins

/// What imageWithSystemSymbolName: gives, without a picture.
@interface StandInSymbolImage : NSImage {
 @public
  NSString* _symbolName;
  NSString* _description;
  BOOL _isTemplate;
}
@end
