/* Letters of a page: stable dark regions of the right size and shape, their boxes drawn into text_regions.pgm. */
#include <jorm.h>
#include <stdio.h>
#include <stdlib.h>

enum { WIDTH = 160, HEIGHT = 60, SCALE = 3, LETTERS = 7 };

static const char *const glyphs[LETTERS][7] = {/* THE FILE */
                                               {"#####", "  #  ", "  #  ", "  #  ", "  #  ", "  #  ", "  #  "},
                                               {"#   #", "#   #", "#   #", "#####", "#   #", "#   #", "#   #"},
                                               {"#####", "#    ", "#    ", "#### ", "#    ", "#    ", "#####"},
                                               {"#####", "#    ", "#    ", "#### ", "#    ", "#    ", "#    "},
                                               {"#####", "  #  ", "  #  ", "  #  ", "  #  ", "  #  ", "#####"},
                                               {"#    ", "#    ", "#    ", "#    ", "#    ", "#    ", "#####"},
                                               {"#####", "#    ", "#    ", "#### ", "#    ", "#    ", "#####"}};

static int letter_x(int i) { return 10 + 20 * i; }

/* Uneven paper with dark letters on it, and two things that are no letters: a rule and a speck. */
static void paint(uint8_t *page) {
    for (int y = 0; y < HEIGHT; ++y)
        for (int x = 0; x < WIDTH; ++x) {
            uint8_t *p = page + y * WIDTH + x;
            const int column = (x - 10) / 20, u = (x - 10) % 20 / SCALE, v = (y - 15) / SCALE;
            *p = (uint8_t)(190 + x / 4);
            if (x >= 10 && column < LETTERS && u < 5 && y >= 15 && v < 7 && glyphs[column][v][u] == '#')
                *p = (uint8_t)(30 + 8 * column);
            if (y >= 48 && y < 50 && x >= 10 && x < 150) *p = 40;
            if (y >= 5 && y < 7 && x >= 70 && x < 72) *p = 40;
        }
}

static void draw_box(uint8_t *page, const jorm_2d_rect *box) { /* x is the row, y the column */
    for (int i = 0; i <= box->width; ++i)
        page[(box->x + i) * WIDTH + box->y] = page[(box->x + i) * WIDTH + box->y + box->height] = 0;
    for (int i = 0; i <= box->height; ++i)
        page[box->x * WIDTH + box->y + i] = page[(box->x + box->width) * WIDTH + box->y + i] = 0;
}

int main(void) {
    static uint8_t page[HEIGHT * WIDTH];
    static uint32_t words[HEIGHT * WIDTH + 2 * (WIDTH + 2)];
    paint(page);
    jorm_array picture;
    jorm_array_make(&picture, JORM_U8, HEIGHT, WIDTH, 1, 0, page);

    jorm_fwtsres store = {0};
    JormFWTSRESinit(&store, words, NULL);
    jorm_mser mser = {0};
    mser.delta = 5;
    mser.min_area = 40;
    mser.max_area_fraction = 0.1f;
    mser.max_variation = 0.25f;
    mser.min_diversity = 0.2f;
    mser.passes = 0; /* dark regions */
    mser.dark_store = &store;
    jorm_mserfilt filter;
    _jorm_mserfilt__$mf(&filter, 0.1f, 1); /* no rules */
    filter.nesting = JORM_MSER_OUTERMOST;

    _G_jorm_use_simd = 1;
    jorm_xe *xe = JormXEopen(NULL, NULL, 0);
    const int64_t status = JormGenerateFMSERs(xe, 0, &picture, NULL, &mser);
    jorm_vector boxes = {0};
    if (status == JORM_OK) jorm_fmserf_brect_$2d(&boxes, &mser, &filter);

    const jorm_2d_rect *box = boxes.data;
    int found[LETTERS] = {0};
    for (uint64_t i = 0; i < boxes.count; ++i) {
        printf("%d,%d %dx%d\n", box[i].y, box[i].x, box[i].height + 1, box[i].width + 1);
        for (int k = 0; k < LETTERS; ++k)
            found[k] += box[i].y == letter_x(k) && box[i].x == 15 && box[i].width == 20 && box[i].height == 14;
    }
    int right = boxes.count == LETTERS;
    for (int k = 0; k < LETTERS; ++k) right &= found[k] == 1;
    for (uint64_t i = 0; i < boxes.count; ++i) draw_box(page, box + i);

    FILE *out = fopen("text_regions.pgm", "wb");
    if (out) {
        fprintf(out, "P5 %d %d 255\n", WIDTH, HEIGHT);
        right &= fwrite(page, 1, sizeof page, out) == sizeof page;
        right &= fclose(out) == 0;
    }
    _UlMfree(boxes.data);
    _UlMfree(mser.regions.data);
    JormFWTSRESfini(&store);
    JormXEclose(xe);
    return status != JORM_OK || !out || !right;
}
