#import <AppKit/AppKit.h>

#import "StandIns/AppKit/ViewState.h"
#import "StandIns/CallLog.h"

namespace {

template <typename Anchor>
Anchor* makeAnchor(NSView* view, NSLayoutAttribute attribute) {
  Anchor* const anchor = [[[Anchor alloc] init] autorelease];
  anchor->_view = view;
  anchor->_attribute = attribute;
  return anchor;
}

NSLayoutConstraint* makeConstraint(NSLayoutAnchor* first, NSLayoutAnchor* second,
                                   CGFloat constant) {
  if (second != nil && second->_attribute != first->_attribute) {
    [NSException raise:NSInvalidArgumentException format:@"only equal edges are laid out here"];
  }
  NSLayoutConstraint* const made = [[[NSLayoutConstraint alloc] init] autorelease];
  made->_firstView = first->_view;
  made->_secondView = second == nil ? nil : second->_view;
  made->_attribute = first->_attribute;
  made->_constant = constant;
  return made;
}

}  // namespace

@implementation StandInLayoutAnchor

- (StandInLayoutConstraint*)constraintEqualToAnchor:(StandInLayoutAnchor*)anchor
                                           constant:(CGFloat)c {
  return makeConstraint(self, anchor, c);
}

@end

@implementation StandInLayoutXAxisAnchor
@end

@implementation StandInLayoutYAxisAnchor
@end

@implementation StandInLayoutDimension

- (StandInLayoutConstraint*)constraintEqualToConstant:(CGFloat)c {
  return makeConstraint(self, nil, c);
}

@end

@implementation StandInLayoutConstraint

+ (void)activateConstraints:(NSArray*)constraints {
  if ([constraints count] > 0) {
    standins::record("NSLayoutConstraint activateConstraints(%lu)",
                     static_cast<unsigned long>([constraints count]));
  }
  for (NSLayoutConstraint* constraint in constraints) {
    standins::viewState(constraint->_firstView).constraints.push_back([constraint retain]);
  }
}

@end

@implementation NSView (StandInConstraints)

- (NSLayoutXAxisAnchor*)leadingAnchor {
  return makeAnchor<NSLayoutXAxisAnchor>(self, NSLayoutAttributeLeading);
}

- (NSLayoutXAxisAnchor*)trailingAnchor {
  return makeAnchor<NSLayoutXAxisAnchor>(self, NSLayoutAttributeTrailing);
}

- (NSLayoutYAxisAnchor*)topAnchor {
  return makeAnchor<NSLayoutYAxisAnchor>(self, NSLayoutAttributeTop);
}

- (NSLayoutYAxisAnchor*)bottomAnchor {
  return makeAnchor<NSLayoutYAxisAnchor>(self, NSLayoutAttributeBottom);
}

- (NSLayoutDimension*)widthAnchor {
  return makeAnchor<NSLayoutDimension>(self, NSLayoutAttributeWidth);
}

- (BOOL)translatesAutoresizingMaskIntoConstraints {
  return standins::viewState(self).translatesAutoresizingMask ? YES : NO;
}

- (void)setTranslatesAutoresizingMaskIntoConstraints:(BOOL)translates {
  standins::viewState(self).translatesAutoresizingMask = translates;
}

- (NSSize)fittingSize {
  return standins::fittingSize(self);
}

- (NSRect)alignmentRectForFrame:(NSRect)frame {
  return frame;
}

- (void)layoutSubtreeIfNeeded {
  standins::record("NSView layoutSubtreeIfNeeded");
  standins::layOut(self);
}

@end
