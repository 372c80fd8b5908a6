#include "views/BannerView.h"

#include "ui/Dynamic.h"
#include "views/RequestDetail.h"

namespace tarnwick {

using namespace ui;

namespace {

constexpr Animation pop = spring(0.45, 0.55).delayed(0.08);

View badge(const Banner& banner, bool appeared) {
  return Circle()
      .fill(banner.tint.opacity(0.18))
      .frame({.width = 40, .height = 40})
      .overlay(Symbol(banner.icon).font({20, Weight::semibold}).foreground(banner.tint).bounce(appeared))
      .scaleEffect(appeared ? 1 : 0.4);
}

View subtitle(const Banner& banner) {
  return HStack({.spacing = 8, .align = Align::firstTextBaseline},
      {Text(banner.subtitle).font({12}).foreground(white(0.65)).prioritized(), requestDetail(banner.detail)});
}

}  // namespace

View bannerView(const Banner& banner) {
  return stateful(false, [banner](State<bool> appeared) {
    return HStack({.spacing = 14},
        {
            badge(banner, appeared),
            VStack({.spacing = 2, .align = Align::leading},
                {
                    Text(banner.title).font({14, Weight::semibold}),
                    subtitle(banner),
                }),
            Spacer(),
        })
        .padding(Edge::horizontal, 22)
        .padding(Edge::top, 10)
        .accessibility(Role::notification, banner.title + ": " + banner.subtitle)
        .onAppear([appeared] { withAnimation(pop, [&] { appeared.set(true); }); });
  });
}

}  // namespace tarnwick
