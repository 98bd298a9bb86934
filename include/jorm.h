/* libJorm 1.0: image processing and computer vision on memory of the caller, behind a flat C interface.
 * Start with jorm/types.h (conventions), jorm/array.h (descriptors) and jorm/xe.h (the environment that every
 * operation takes first); each further header serves one family of operations. */
#ifndef JORM_H
#define JORM_H

#include "jorm/types.h"

#include "jorm/array.h"
#include "jorm/xe.h"

#include "jorm/arith.h"
#include "jorm/compare.h"
#include "jorm/convert.h"
#include "jorm/copy.h"
#include "jorm/filter.h"
#include "jorm/geometry.h"
#include "jorm/matrix.h"
#include "jorm/morphology.h"
#include "jorm/regiontree.h"
#include "jorm/resample.h"
#include "jorm/sepfilter.h"
#include "jorm/shapes.h"
#include "jorm/sort.h"
#include "jorm/stats.h"
#include "jorm/threshold.h"
#include "jorm/watershed.h"

#endif
