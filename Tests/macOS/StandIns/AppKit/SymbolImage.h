#pragma once

#import <AppKit/AppKit.h>

/// What imageWithSystemSymbolName: gives, without a picture.
@interface StandInSymbolImage : NSImage {
 @public
  NSString* _symbolName;
  NSString* _description;
  BOOL _isTemplate;
}
@end
