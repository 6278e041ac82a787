#pragma once

// The part of Core Animation that Platform/macOS uses, as Apple documents it.

#import <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

@interface CALayer : NSObject {
  CGFloat _cornerRadius;
  CGFloat _borderWidth;
  CGColorRef _backgroundColor;
  CGColorRef _borderColor;
}
@property CGFloat cornerRadius;
@property CGFloat borderWidth;
@property(nullable) CGColorRef backgroundColor;
@property(nullable) CGColorRef borderColor;
@end
