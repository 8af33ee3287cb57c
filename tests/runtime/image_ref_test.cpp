#include "runtime/sleeping/image_ref.h"

#include <gtest/gtest.h>

#include <utility>

namespace clarivex {
namespace {

TEST(ImageRef, CountsEveryHolderOnceAndDetachesFromTheOthers) {
    ImageRef first, second;
    EXPECT_EQ(first.Get(), nullptr);
    first.Detach();
    AllocatePlanes(8, 8, first->planes);
    first->planes.luma.data[0] = 42;
    const ImageBody* body = first.Get();
    first.Detach();
    EXPECT_EQ(first.Get(), body) << "it is not shared yet";
    second.Detach();
    second = first;
    second = std::as_const(second);
    EXPECT_EQ(first->refCount, 2);
    second.Detach();
    EXPECT_EQ(second->planes.luma.data, nullptr);
    EXPECT_EQ(first->refCount, 1);
    second = first;
    first = ImageRef();
    EXPECT_EQ(second->refCount, 1);
    EXPECT_EQ(second->planes.luma.data[0], 42);
}

}  // namespace
}  // namespace clarivex
