// Views in C++: one picture, seen as a part, a channel, a mirror image; operations by name, with named options.
#include <jorm/jorm.hpp>

#include <cstdio>
#include <vector>

int main() {
    std::vector<uint8_t> rgb(4 * 6 * 3), mirrored(rgb.size()), marks(4 * 6);
    for (size_t i = 0; i < rgb.size(); ++i) rgb[i] = uint8_t(3 * i);

    const jorm::view picture(rgb, {.rows = 4, .columns = 6, .channels = 3}); // the memory stays in the vector
    const jorm::view mask(marks, {4, 6});
    const auto green = picture.channel(1);
    const auto middle = green.sub({.row = 1, .column = 2, .rows = 2, .columns = 2});

    jorm::add(middle, jorm::in_place, 100, {.saturate = true}); // four samples of green become brighter
    jorm::compare(mask, green, jorm::relation::greater, 150);
    jorm::copy(jorm::view(mirrored, {4, 6, 3}), picture.flip_horizontal());

    const jorm::extrema extrema = jorm::minmax(green);
    std::printf("green: mean %.2f, of the marked pixels %.2f, largest %d in row %d, column %d\n", jorm::mean(green)[0],
                jorm::mean(green, {.mask = mask})[0], extrema.max[0].i, extrema.max[0].row, extrema.max[0].column);

    // What cannot be done throws; or says so in its result, where that is wanted.
    bool thrown = false;
    try {
        jorm::add(picture, picture, green); // three channels and one
    } catch (const jorm::error &e) {
        thrown = e.status() == jorm::status::invalid;
        std::printf("three channels and one: %s\n", e.what());
    }
    const auto outside = green.sub<jorm::nothrow>({.row = 4});
    std::printf("from row 4 on: %s\n", text(outside.status()));

    return !thrown || outside || middle(1, 1) != 3 * 46 + 100 || mirrored[0] != rgb[15];
}
