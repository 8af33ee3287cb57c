#include "runtime/image_ref.h"

#include <gtest/gtest.h>

namespace clarivex {
namespace {

TEST(ImageRef, DetachMakesABodyAndKeepsOneThatNobodyShares) {
    ImageRef ref;
    EXPECT_EQ(ref.Get(), nullptr);
    ref.Detach();
    ASSERT_NE(ref.Get(), nullptr);
    EXPECT_EQ(ref->refCount, 1);
    const ImageBody* body = ref.Get();
    AllocatePlanes(8, 8, ref->planes);
    ref.Detach();
    EXPECT_EQ(ref.Get(), body);
    EXPECT_NE(ref->planes.owner, nullptr);
}

TEST(ImageRef, DetachLeavesTheOtherHoldersContentUntouched) {
    ImageRef first;
    first.Detach();
    AllocatePlanes(8, 8, first->planes);
    first->planes.luma.data[0] = 42;
    ImageRef second = first;
    EXPECT_EQ(first->refCount, 2);

    second.Detach();
    EXPECT_NE(second.Get(), first.Get());
    EXPECT_EQ(second->planes.luma.data, nullptr);
    EXPECT_EQ(first->refCount, 1);
    EXPECT_EQ(first->planes.luma.data[0], 42);
}

TEST(ImageRef, AssignmentCountsEveryHolderOnce) {
    ImageRef first;
    first.Detach();
    AllocatePlanes(8, 8, first->planes);
    ImageRef second;
    second.Detach();
    second = first;
    const ImageRef& same = second;
    second = same;
    EXPECT_EQ(first->refCount, 2);
    first = ImageRef();
    EXPECT_EQ(second->refCount, 1);
    EXPECT_NE(second->planes.owner, nullptr);
}

}  // namespace
}  // namespace clarivex
