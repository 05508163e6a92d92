#pragma once
// TKXDeltaFont: a font that remembers how it differs from a base font, so that when the base
// changes (the panel's font, say) it follows the base in everything it did not set itself.

#include "kxcharts/toolkit/graphics/KXGraphicObjects.h"

namespace kx {

class TKXDeltaFont : public TFont {
  KX_CLASS(TKXDeltaFont, TFont)

public:
  // Records Base as it is now as the base of the differences. Every attribute in which this
  // font then equals Base counts as inherited; the others are its own. A nil Base forgets
  // the base, and every attribute counts as the font's own.
  void SetBaseFont(const TFont* Base);
  // Takes NewBase as the new base: each inherited attribute takes NewBase's value, each own
  // attribute stays. Font styles count member by member (a font that added bold to a plain
  // base stays bold over an italic base, and becomes bold italic). NewBase is then recorded
  // as the base. OnChange is raised once, when something changed. Without a recorded base
  // the font simply takes NewBase's attributes.
  void ChangeBaseFont(const TFont* NewBase);
  bool HasBaseFont() const { return FHasBase; }

  void Assign(const TPersistent* Source) override;

private:
  // A copy of the attributes of the base, not a pointer: the base may go away first.
  struct TSnapshot {
    std::string Name;
    int32_t Height = 0;
    TColor Color = clBlack;
    TFontStyles Style;
    int32_t Orientation = 0;
  };
  static TSnapshot Take(const TFont& F);

  TSnapshot FBase;
  bool FHasBase = false;
};

} // namespace kx
