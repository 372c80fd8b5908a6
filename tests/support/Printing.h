#pragma once
#include <ostream>

#include "base/Geometry.h"
#include "base/Presentation.h"
#include "base/Tab.h"

/// How failed expectations show our values.
namespace tarnwick {

inline void PrintTo(const Point& p, std::ostream* out) { *out << '(' << p.x << ", " << p.y << ')'; }
inline void PrintTo(const Size& s, std::ostream* out) { *out << s.width << " x " << s.height; }
inline void PrintTo(const Rect& r, std::ostream* out) {
  *out << r.width << " x " << r.height << " at (" << r.x << ", " << r.y << ')';
}
inline void PrintTo(Tab tab, std::ostream* out) { *out << "Tab::" << rawValue(tab); }
inline void PrintTo(Presentation presentation, std::ostream* out) {
  switch (presentation) {
    case Presentation::transient:
      *out << "Presentation::transient";
      return;
    case Presentation::claude:
      *out << "Presentation::claude";
      return;
    case Presentation::nowPlaying:
      *out << "Presentation::nowPlaying";
      return;
    case Presentation::idle:
      *out << "Presentation::idle";
      return;
    case Presentation::banner:
      *out << "Presentation::banner";
      return;
    case Presentation::expanded:
      *out << "Presentation::expanded";
      return;
  }
}

}  // namespace tarnwick
