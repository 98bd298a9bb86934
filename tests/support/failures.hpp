// What happens when memory runs out at any point.
#pragma once
#include "support/heap.hpp"

#include <gtest/gtest.h>

// Runs `scene` with no request granted, then one, two, ... until all it makes are. What a scene takes from the heap it
// gives back, whatever fails. Returns how many requests it makes.
template <class Scene> int for_each_failure(const char *what, Scene scene) {
    for (int granted = 0;; ++granted) {
        const int64_t before = heap_blocks;
        heap_calls_left = granted;
        scene();
        const bool failed = heap_calls_left < 0;
        heap_calls_left = INT64_MAX;
        const int64_t leaked = heap_blocks - before;
        EXPECT_EQ(leaked, 0) << what << ", " << granted << " requests granted";
        if (!failed) return granted;
    }
}
