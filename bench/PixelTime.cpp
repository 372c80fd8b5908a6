// pixel-time X Y WIDTH HEIGHT INPUT COMMAND…: starts the command with the file INPUT as standard input, and
// prints the milliseconds from then until a pixel of that area of the screen changed, and the id of the
// process, which goes on.
#include <xcb/xcb.h>

#include <memory>

#include "Process.h"

namespace {

using bench::fail;

std::vector<uint8_t> pixels(xcb_connection_t* server, xcb_window_t root, const int (&area)[4]) {
  const auto cookie = xcb_get_image(server, XCB_IMAGE_FORMAT_Z_PIXMAP, root, int16_t(area[0]),
      int16_t(area[1]), uint16_t(area[2]), uint16_t(area[3]), ~0u);
  const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
      xcb_get_image_reply(server, cookie, nullptr), &std::free);
  if (!reply) fail("the picture of the screen", EIO);
  const uint8_t* data = xcb_get_image_data(reply.get());
  return {data, data + xcb_get_image_data_length(reply.get())};
}

}  // namespace

int main(int count, char** arguments) {
  const int area[4] = {
      std::atoi(arguments[1]), std::atoi(arguments[2]), std::atoi(arguments[3]), std::atoi(arguments[4])};
  xcb_connection_t* server = xcb_connect(nullptr, nullptr);
  if (xcb_connection_has_error(server)) fail("the display", ECONNREFUSED);
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(server)).data->root;

  const auto before = pixels(server, root, area);
  const auto began = bench::Clock::now();
  const pid_t process = bench::start({arguments + 6, arguments + count}, arguments[5]);
  while (pixels(server, root, area) == before) {
    if (bench::millisecondsSince(began) > 10'000) fail("the area does not change", ETIMEDOUT);
    usleep(200);  // often enough, and leaves the server its time
  }
  std::printf("%.3f %d\n", bench::millisecondsSince(began), process);
}
