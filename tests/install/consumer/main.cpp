// A program outside the project that builds against the installed package.

#include <cstdio>

#include "melodex/melodex.h"

int main() {
    melodex::Song song;
    song.info().setTitle("Amazing Grace");
    song.info().setKey("G");
    song.transpose(2);
    std::printf("%s\n", song.toString().c_str());
#ifdef MELODEX_CONSUMER_RENDER
    melodex::PngImage image({100, 20});
    if (image.context().textExtent("Amazing Grace").width <= 0 || image.pngBytes().empty())
        return 1;
#endif
    return song.info().keyName(0) == "A" && melodex::equalsIgnoreCase("ÉGLISE", "église") ? 0 : 1;
}
