#include "linux/bus/BusWaiter.h"

namespace tarnwick {
void BusWaiter::wait(std::function<std::string()> address, std::function<void()> then) {
  address_ = std::move(address);
  then_ = std::move(then);
  backoff_.succeeded();
  look();
}

void BusWaiter::look() {
  notifier_.reset();
  const std::string address = address_();
  const auto addresses = parseBusAddresses(address);
  // Over other transports the library has to find out for itself.
  if (addresses.empty() && !address.empty()) return answered();
  probe_ = std::make_unique<BusConnection>(addresses, BusConnection::Peer::anybody);
  if (probe_->descriptor() < 0) return backoff_.retry([this] { look(); });
  notifier_ = std::make_unique<QSocketNotifier>(probe_->descriptor(), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { proceed(); });
}

void BusWaiter::proceed() {
  probe_->proceed();
  if (probe_->state() == BusConnection::State::silent) return;
  notifier_->setEnabled(false);
  if (probe_->state() == BusConnection::State::answers) return answered();
  backoff_.retry([this] { look(); });
}

void BusWaiter::answered() {
  backoff_.succeeded();
  answer_ = scheduler_.post([this] {
    notifier_.reset();
    probe_.reset();
    const auto then = std::move(then_);
    then();
  });
}

}  // namespace tarnwick
