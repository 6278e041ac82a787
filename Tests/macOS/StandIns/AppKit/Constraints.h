#pragma once

#import <QuartzCore/QuartzCore.h>

// Layout: constraints, anchors, stack views and layers.

#pragma clang assume_nonnull begin

@class StandInLayoutConstraint;

@interface StandInLayoutAnchor : NSObject {
 @public
  NSView* _view;  // Not owned: it makes its anchors afresh each time.
  NSLayoutAttribute _attribute;
}
- (StandInLayoutConstraint*)constraintEqualToAnchor:(StandInLayoutAnchor*)anchor
                                           constant:(CGFloat)c;
@end
@interface StandInLayoutXAxisAnchor : StandInLayoutAnchor
@end
@interface StandInLayoutYAxisAnchor : StandInLayoutAnchor
@end
@interface StandInLayoutDimension : StandInLayoutAnchor
- (StandInLayoutConstraint*)constraintEqualToConstant:(CGFloat)c;
@end

@interface StandInLayoutConstraint : NSObject {
 @public
  NSView* _firstView;
  NSView* _Nullable _secondView;
  NSLayoutAttribute _attribute;
  CGFloat _constant;
}
+ (void)activateConstraints:(NSArray*)constraints;
@end

#define NSLayoutAnchor StandInLayoutAnchor
#define NSLayoutConstraint StandInLayoutConstraint
#define NSLayoutXAxisAnchor StandInLayoutXAxisAnchor
#define NSLayoutYAxisAnchor StandInLayoutYAxisAnchor
#define NSLayoutDimension StandInLayoutDimension

@interface NSView (StandIn)
@property(readonly) NSLayoutXAxisAnchor* leadingAnchor;
@property(readonly) NSLayoutXAxisAnchor* trailingAnchor;
@property(readonly) NSLayoutYAxisAnchor* topAnchor;
@property(readonly) NSLayoutYAxisAnchor* bottomAnchor;
@property(readonly) NSLayoutDimension* widthAnchor;
@property BOOL translatesAutoresizingMaskIntoConstraints;
@property(readonly) NSSize fittingSize;
- (void)layoutSubtreeIfNeeded;
- (NSRect)alignmentRectForFrame:(NSRect)frame;
@property BOOL wantsLayer;
@property(nullable) CALayer* layer;
@property(readonly) BOOL wantsUpdateLayer;
- (void)updateLayer;
- (nullable NSBitmapImageRep*)bitmapImageRepForCachingDisplayInRect:(NSRect)rect;
@end

typedef NS_ENUM(NSInteger, NSStackViewDistribution) {
  NSStackViewDistributionGravityAreas = -1,
  NSStackViewDistributionFill = 0,
  NSStackViewDistributionFillEqually = 1,
};

@interface NSStackView : NSView {
 @public
  NSMutableArray* _arranged;
  NSMapTable* _customSpacing;

 @private
  NSUserInterfaceLayoutOrientation _orientation;
  NSLayoutAttribute _alignment;
  NSStackViewDistribution _distribution;
  CGFloat _spacing;
  NSEdgeInsets _edgeInsets;
}
@property NSUserInterfaceLayoutOrientation orientation;
@property NSLayoutAttribute alignment;
@property NSStackViewDistribution distribution;
@property CGFloat spacing;
@property NSEdgeInsets edgeInsets;
@property(copy, readonly) NSArray* arrangedSubviews;
- (void)addArrangedSubview:(NSView*)view;
- (void)setCustomSpacing:(CGFloat)spacing afterView:(NSView*)view;
@end

#pragma clang assume_nonnull end
