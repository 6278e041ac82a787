#pragma once

// GNUstep's AppKit, and what Platform/macOS uses beyond it, as Apple documents it.

#include_next <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

#import "StandIns/AppKit/Constraints.h"
#import "StandIns/CallLog.h"

#pragma clang assume_nonnull begin

// Menus, controls, fonts, colours and images.

typedef NSInteger NSWindowLevel;
static const NSAlertStyle NSAlertStyleInformational = NSInformationalAlertStyle;
static const NSBezelStyle NSBezelStyleRounded = NSRoundedBezelStyle;
static const NSEventType NSEventTypeApplicationDefined = NSApplicationDefined;
static const NSEventType NSEventTypeKeyDown = NSKeyDown;
static const NSBitmapImageFileType NSBitmapImageFileTypePNG = NSPNGFileType;

@protocol StandInMenuDelegate <NSObject>
@optional
- (void)menuNeedsUpdate:(NSMenu*)menu;
@end
#define NSMenuDelegate StandInMenuDelegate

@interface NSMenu (StandIn)
- (void)removeAllItems;
@end

@interface NSControl (StandIn)
@property NSControlSize controlSize;
@end

@interface NSTextField (StandIn)
+ (instancetype)labelWithString:(NSString*)stringValue;
+ (instancetype)wrappingLabelWithString:(NSString*)stringValue;
@property CGFloat preferredMaxLayoutWidth;
@end

@interface NSButton (StandIn)
+ (instancetype)buttonWithTitle:(NSString*)title
                         target:(nullable id)target
                         action:(nullable SEL)action;
@end

@interface NSFont (StandIn)
+ (NSFont*)systemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight;
+ (NSFont*)monospacedDigitSystemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight;
@end

@interface NSColor (StandIn)
@property(class, strong, readonly) NSColor* separatorColor;
@property(readonly) CGColorRef CGColor;
@end

@interface NSImage (StandIn)
+ (nullable instancetype)imageWithSystemSymbolName:(NSString*)symbolName
                          accessibilityDescription:(nullable NSString*)description;
- (BOOL)isTemplate;
- (void)setTemplate:(BOOL)isTemplate;
@end

@interface NSApplication (StandIn)
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy;
@end

// The status bar, whose items have a button.

@interface StandInStatusItem : NSObject {
 @private
  NSStatusBarButton* _button;
  NSMenu* _menu;
  standins::LiveStatusItem _live;
}
@property(readonly, strong, nullable) NSStatusBarButton* button;
@property(strong, nullable) NSMenu* menu;
@end

@interface StandInStatusBar : NSObject
+ (StandInStatusBar*)systemStatusBar;
- (StandInStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(StandInStatusItem*)item;
@end

#define NSStatusItem StandInStatusItem
#define NSStatusBar StandInStatusBar

// The workspace's notification centre, and the list of running applications.

@interface StandInWorkspace : NSObject
@property(class, readonly, strong) StandInWorkspace* sharedWorkspace;
@property(readonly, strong) NSNotificationCenter* notificationCenter;
@end

@interface StandInRunningApplication : NSObject {
 @private
  pid_t _processIdentifier;
}
+ (NSArray*)runningApplicationsWithBundleIdentifier:(NSString*)bundleIdentifier;
@property(readonly) pid_t processIdentifier;
@end

#define NSWorkspace StandInWorkspace
#define NSRunningApplication StandInRunningApplication

#pragma clang assume_nonnull end
