#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QBuffer>
#include <QImage>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <string_view>

#include "base/AddressSpace.h"
#include "cover/CoverBytes.h"
#include "linux/files/QtImageDecoder.h"

namespace {

/// What is fetched, and what is done with it, is others' choice: an end to it, however it goes.
void setLimits() {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  ::alarm(20);
  const struct {
    __rlimit_resource kind;
    rlim_t most;
  } limits[] = {{RLIMIT_CPU, 3}, {RLIMIT_FSIZE, 1 << 20}, {RLIMIT_CORE, 0}};
  for (const auto& limit : limits) {
    const struct rlimit value = {limit.most, limit.most};
    ::setrlimit(limit.kind, &value);
  }
  tarnwick::limitAddressSpace(size_t{256} << 20);
}

bool write(const tarnwick::Image& image) {
  const QImage picture(reinterpret_cast<const uchar*>(image.pixels->data()), image.width, image.height,
      QImage::Format_ARGB32_Premultiplied);
  QBuffer file;
  file.open(QIODevice::WriteOnly);
  return picture.save(&file, "PNG") &&
         ::write(STDOUT_FILENO, file.data().constData(), static_cast<size_t>(file.size())) == file.size();
}

}  // namespace

/// Reads the address of a cover from standard input and writes it, made small, as a PNG file to standard
/// output. With the argument --network it may be fetched from there. Ends with 1 when there is no such cover.
int main(int argc, char** argv) {
  setLimits();
  const std::string address(std::istreambuf_iterator<char>(std::cin), {});
  const bool mayUseNetwork = argc > 1 && std::string_view(argv[1]) == "--network";
  const tarnwick::QtImageDecoder decoder(tarnwick::QtImageDecoder::manyPixels);
  const auto image = decoder.decode(tarnwick::coverBytes(address, mayUseNetwork));
  // Nothing is to be taken apart.
  std::_Exit(image && write(*image) ? EXIT_SUCCESS : EXIT_FAILURE);
}
