#pragma once

namespace engine {

// Every length of a report is a whole number of twips; this is the one
// place that knows how twips meet inches, points and device pixels.
inline constexpr int kTwipsPerInch = 1440;
inline constexpr int kTwipsPerPoint = 20;

// Device pixels per twip on a device of the given resolution.
constexpr double pixelsPerTwip(double dotsPerInch) {
    return dotsPerInch / kTwipsPerInch;
}

constexpr double twipsToPoints(int twips) {
    return static_cast<double>(twips) / kTwipsPerPoint;
}

}  // namespace engine
