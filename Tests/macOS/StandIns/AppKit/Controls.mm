#import <AppKit/AppKit.h>

#import "StandIns/AppKit/Shown.h"
#import "StandIns/AppKit/ViewState.h"
#import "StandIns/CallLog.h"
#import "StandIns/Knobs.h"

@implementation NSMenu (StandIn)

// GNUstep's asks the delegate for the items after every change of one; AppKit before it opens the
// menu.
- (void)update {
}

- (void)removeAllItems {
  while ([self numberOfItems] > 0) {
    [self removeItemAtIndex:0];
  }
}

@end

@implementation NSControl (StandIn)

- (NSControlSize)controlSize {
  return [[self cell] controlSize];
}

- (void)setControlSize:(NSControlSize)controlSize {
  [[self cell] setControlSize:controlSize];
}

@end

@implementation NSTextField (StandIn)

+ (instancetype)labelWithString:(NSString*)stringValue {
  NSTextField* const label = [[[self alloc] initWithFrame:NSZeroRect] autorelease];
  [label setStringValue:stringValue];
  [label setEditable:NO];
  [label setSelectable:NO];
  [label setBordered:NO];
  [label setBezeled:NO];
  [label setDrawsBackground:NO];
  [[label cell] setWraps:NO];
  return label;
}

+ (instancetype)wrappingLabelWithString:(NSString*)stringValue {
  NSTextField* const label = [self labelWithString:stringValue];
  [label setSelectable:YES];
  [[label cell] setWraps:YES];
  return label;
}

- (CGFloat)preferredMaxLayoutWidth {
  return standins::viewState(self).preferredMaxLayoutWidth;
}

- (void)setPreferredMaxLayoutWidth:(CGFloat)width {
  standins::viewState(self).preferredMaxLayoutWidth = width;
}

@end

@implementation NSButton (StandIn)

+ (instancetype)buttonWithTitle:(NSString*)title target:(id)target action:(SEL)action {
  NSButton* const button = [[[self alloc] initWithFrame:NSZeroRect] autorelease];
  [button setTitle:title];
  [button setTarget:target];
  [button setAction:action];
  return button;
}

@end

@implementation StandInSymbolImage

- (void)dealloc {
  [_symbolName release];
  [_description release];
  [super dealloc];
}

- (BOOL)isTemplate {
  return _isTemplate;
}

- (void)setTemplate:(BOOL)isTemplate {
  _isTemplate = isTemplate;
}

@end

@implementation NSImage (StandIn)

+ (instancetype)imageWithSystemSymbolName:(NSString*)symbolName
                 accessibilityDescription:(NSString*)description {
  if (!standins::knobs().symbols.contains([symbolName UTF8String])) {
    return nil;
  }
  StandInSymbolImage* const image =
      [[[StandInSymbolImage alloc] initWithSize:NSMakeSize(16, 16)] autorelease];
  image->_symbolName = [symbolName copy];
  image->_description = [description copy];
  return image;
}

- (BOOL)isTemplate {
  return NO;
}

- (void)setTemplate:(BOOL)isTemplate {
  (void)isTemplate;
}

@end

@implementation NSEvent (StandIn)

+ (NSEventModifierFlags)modifierFlags {
  return standins::knobs().modifierFlags;
}

@end
