#pragma once
#include <optional>
#include <string_view>

namespace tarnwick::ui {

/// The glyph of the symbol font that stands for a symbol.
struct SymbolGlyph {
  char32_t codepoint;
  /// Optical correction of its size, about its centre.
  double scale = 1;
  /// Degrees that it is turned clockwise about its centre.
  double turn = 0;
};

/// The glyph for a symbol name, or none for an unknown name.
std::optional<SymbolGlyph> symbolGlyph(std::string_view name);

}  // namespace tarnwick::ui
