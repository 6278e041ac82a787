#pragma once

// Menus, controls, fonts, colours and images.

#pragma clang assume_nonnull begin

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

#pragma clang assume_nonnull end
