#import <AppKit/AppKit.h>

@implementation NSStackView

@synthesize orientation = _orientation;
@synthesize alignment = _alignment;
@synthesize distribution = _distribution;
@synthesize spacing = _spacing;

- (instancetype)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self != nil) {
    _distribution = NSStackViewDistributionGravityAreas;
    _spacing = 8;
    _arranged = [[NSMutableArray alloc] init];
    _customSpacing = [[NSMapTable strongToStrongObjectsMapTable] retain];
  }
  return self;
}

- (void)dealloc {
  [_arranged release];
  [_customSpacing release];
  [super dealloc];
}

- (NSEdgeInsets)edgeInsets {
  return _edgeInsets;
}

- (void)setEdgeInsets:(NSEdgeInsets)insets {
  _edgeInsets = insets;
}

- (NSArray*)arrangedSubviews {
  return [NSArray arrayWithArray:_arranged];
}

- (void)addArrangedSubview:(NSView*)view {
  [view setTranslatesAutoresizingMaskIntoConstraints:NO];
  [_arranged addObject:view];
  [self addSubview:view];
}

- (void)setCustomSpacing:(CGFloat)spacing afterView:(NSView*)view {
  [_customSpacing setObject:[NSNumber numberWithDouble:spacing] forKey:view];
}

@end
