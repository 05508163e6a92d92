#pragma once
// What the benchmark programs share: the form that owns the panels and charts they time,
// as an application's form owns its components.

#include "kxcharts/toolkit/objects/KXClasses.h"

namespace kx::bench {

class TBenchForm : public TComponent {
  KX_CLASS(TBenchForm, TComponent)

public:
  using TComponent::TComponent;
};

} // namespace kx::bench
