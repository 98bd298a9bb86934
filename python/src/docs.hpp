// Paragraphs that docstrings share.
#pragma once

#define JORM_DOC_OUT                                                                                                   \
    "out : ndarray, optional\n"                                                                                        \
    "    Takes the result: an array of its size, or of the size of the picture, of which `region`\n"                   \
    "    is then written. It may be a source. Left out, the result is a new array.\n"
#define JORM_DOC_REGION                                                                                                \
    "region : (row, column, rows, columns) or a pair of slices, optional\n"                                            \
    "    The part of the pictures to work on.\n"
#define JORM_DOC_MASK                                                                                                  \
    "mask : ndarray of uint8 or bool, optional\n"                                                                      \
    "    Pixels where it is 0 take no part.\n"
