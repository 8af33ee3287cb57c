#include "overlay/compositor.h"

#include "simd/kernel_table.h"
#include "tests/support/memory_count.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

/// A target of numbers. What it holds after a change of size is rubbish, until it is cleared.
class Grid {
public:
    static constexpr uint32_t rubbish = 0xDEADBEEF;

    void Reallocate(int32_t newWidth, int32_t newHeight) {
        if (newWidth == width && newHeight == height) return;
        width = newWidth;
        height = newHeight;
        pixels.assign(static_cast<size_t>(width * height), rubbish);
    }

    void ClearRectangle(const Rectangle& rectangle) {
        for (int32_t y = rectangle.top; y < rectangle.bottom; ++y)
            for (int32_t x = rectangle.left; x < rectangle.right; ++x) At(x, y) = 0;
    }

    int32_t AllocatedWidth() const { return width; }
    int32_t AllocatedHeight() const { return height; }
    uint32_t& At(int32_t x, int32_t y) {
        EXPECT_TRUE(x >= 0 && y >= 0 && x < width && y < height) << x << ", " << y;
        return pixels[static_cast<size_t>(y * width + x)];
    }
    bool operator==(const Grid&) const = default;

private:
    int32_t width = 0;
    int32_t height = 0;
    std::vector<uint32_t> pixels;
};

bool Contains(const Rectangle& rectangle, int32_t x, int32_t y) {
    return x >= rectangle.left && x < rectangle.right && y >= rectangle.top && y < rectangle.bottom;
}

Region RegionOf(const Rectangle& rectangle) {
    return Region::OfRectangle(rectangle.left, rectangle.top, rectangle.Width(), rectangle.Height());
}

/// By this thread.
bool IsHeld(FastLock& lock) {
    if (!lock.Acquire()) return true;
    lock.Release();
    return false;
}

/// A rectangle with a part that hides what is below; the rest mixes with it. Painting a pixel twice shows.
class Box : public Element<Grid> {
public:
    explicit Box(uint32_t colour = 1, const Rectangle& place = {}) : place(place), colour(colour) {}

    ~Box() override {
        if (whenDeleted != nullptr) *whenDeleted += 1;
    }

    Group<Grid>* GetGroup() override { return &group; }
    void Broadcast(intptr_t message) override { messages.push_back(message * 10 + colour); }
    void SetSize(int32_t newWidth, int32_t newHeight, float) override { size = {0, 0, newWidth, newHeight}; }

    bool Update(const ComposeFrame&) override {
        const bool moved = std::exchange(content, RegionOf(place)) != content;
        opaque = RegionOf(cover);
        changed = std::exchange(dirty, false) ? content : Region();
        return moved;
    }

    void Paint(Grid& target, const Region& region, const ComposeFrame&) override {
        EXPECT_EQ(size, (Rectangle{0, 0, target.AllocatedWidth(), target.AllocatedHeight()}));
        painted = RegionUnion(painted, region);
        if (watched != nullptr) paintedUnderLock = IsHeld(*watched);
        for (const Rectangle part : RegionRects(region))
            for (int32_t y = part.top; y < part.bottom; ++y)
                for (int32_t x = part.left; x < part.right; ++x) PaintPixel(target.At(x, y), x, y);
    }

    void PaintPixel(uint32_t& pixel, int32_t x, int32_t y) const {
        pixel = (Contains(cover, x, y) ? 0 : pixel * 31) + colour;
    }

    /// What was painted since the last call.
    Region TakePainted() { return std::exchange(painted, Region()); }

    Rectangle place;
    Rectangle cover;
    uint32_t colour;
    bool dirty = false;
    int32_t* whenDeleted = nullptr;
    FastLock* watched = nullptr;
    bool paintedUnderLock = false;
    static inline std::vector<intptr_t> messages;  // each with its taker's colour as the last digit
    Group<Grid> group;

private:
    Rectangle size;
    Region painted;
};

constexpr int32_t width = 40;
constexpr int32_t height = 30;

struct Stage {
    Composition Step(const ComposeOptions& options = {}, int32_t newWidth = width, int32_t newHeight = height) {
        return Compose(group, grid, newWidth, newHeight, 1.0F, ComposeFrame{.kernels = scalarKernels}, options);
    }

    Group<Grid> group;
    Grid grid;
};

TEST(Compositor, WhatIsHiddenIsNotPainted) {
    Stage stage;
    Box bottom(1, {0, 0, 20, 10}), middle(2, {10, 0, 30, 10}), top(3, {5, 0, 15, 10});
    top.cover = {5, 0, 12, 10};
    for (Box* box : {&bottom, &middle, &top}) stage.group.AddChild(*box);
    stage.Step();
    EXPECT_EQ(bottom.TakePainted(), RegionSubtract(RegionOf(bottom.place), RegionOf(top.cover)));
    EXPECT_EQ(middle.TakePainted(), RegionSubtract(RegionOf(middle.place), RegionOf(top.cover)));
    EXPECT_EQ(top.TakePainted(), RegionOf(top.place));
}

TEST(Compositor, OwnedElementsEndWhenTheyAreTakenOutOrWithTheirGroup) {
    int32_t deleted = 0;
    {
        Stage stage;
        std::array<Box*, 3> boxes;
        for (Box*& box : boxes) {
            auto owned = std::make_unique<Box>(1, Rectangle{0, 0, 10, 10});
            owned->whenDeleted = &deleted;
            box = owned.get();
            SceneUpkeep<Grid>::AddOwned(stage.group, std::move(owned));
        }
        stage.Step();
        boxes[1]->Remove();
        EXPECT_EQ(deleted, 0);
        EXPECT_EQ(stage.Step().damage, RegionOf({0, 0, 10, 10}));
        EXPECT_EQ(deleted, 1);
        EXPECT_EQ(stage.grid.At(3, 3), 31U + 1U) << "two are left";
    }
    EXPECT_EQ(deleted, 3);
}

TEST(Compositor, MessagesReachVisibleElementsFromTopToBottom) {
    Stage stage;
    Box low(1), holder(2), inner(3), innermost(4), hidden(5), below(6), top(7);
    for (Box* box : {&low, &holder, &hidden, &top}) stage.group.AddChild(*box);
    holder.group.AddChild(inner);
    inner.group.AddChild(innermost);
    hidden.group.AddChild(below);
    hidden.SetVisible(false);
    Box::messages.clear();
    SceneUpkeep<Grid>::Broadcast(stage.group, 9);
    EXPECT_EQ(Box::messages, (std::vector<intptr_t>{97, 94, 93, 92, 91}));
}

TEST(Compositor, CallersWidenNarrowAndGuardWhatIsRepainted) {
    Stage stage;
    Box box(1, {0, 0, 20, 20});
    stage.group.AddChild(box);
    stage.Step();
    FastLock lock;
    const Region clip = RegionOf({10, 0, 100, 100}), extra = RegionOf({0, 15, 5, 100});
    box.dirty = true;
    box.watched = &lock;
    const ComposeOptions options{.limits = {.extraDamage = &extra, .clip = &clip, .lock = &lock}};
    EXPECT_EQ(stage.Step(options).damage, RegionUnion(RegionOf({10, 0, 20, 20}), RegionOf({0, 15, 5, height})));
    EXPECT_TRUE(box.paintedUnderLock);
    EXPECT_FALSE(IsHeld(lock));
    EXPECT_EQ(stage.Step(options).damage, RegionOf({0, 15, 5, height}));
}

/// A tree of boxes that anything may happen to.
class Walk {
public:
    explicit Walk(uint32_t seed) : random(seed) {
        shown.fill(true);
        for (size_t i = 0; i < count; ++i) (parents[i] == root ? group : boxes[parents[i]].group).AddChild(boxes[i]);
    }

    Composition Step(bool changes) {
        for (size_t i = 0; changes && i < count; ++i) Change(i);
        if (changes && Draw(20) == 0) targetWidth = Draw(30) + 1;
        return Compose(group, grid, targetWidth, 24, 1.0F, ComposeFrame{.kernels = scalarKernels},
                       {.releaseWhenEmpty = Draw(2) == 0});
    }

    /// What the target has to hold, painted from nothing.
    Grid Painted() const {
        Grid plain;
        plain.Reallocate(targetWidth, 24);
        for (int32_t y = 0; y < 24; ++y)
            for (int32_t x = 0; x < targetWidth; ++x) {
                plain.At(x, y) = 0;
                for (size_t i = 0; i < count; ++i)
                    if (Shown(i) && Contains(boxes[i].place, x, y)) boxes[i].PaintPixel(plain.At(x, y), x, y);
            }
        return plain;
    }

    Grid grid;

private:
    static constexpr size_t count = 7;
    static constexpr size_t root = count;
    static constexpr std::array<size_t, count> parents = {root, 0, 1, 1, 0, root, root};  // boxes in painting order

    bool Shown(size_t i) const { return i == root || (shown[i] && Shown(parents[i])); }

    int32_t Draw(int32_t end) { return static_cast<int32_t>(random() % static_cast<uint32_t>(end)); }

    void Change(size_t i) {
        Box& box = boxes[i];
        const int32_t event = Draw(12);
        if (event == 0) {
            const int32_t left = Draw(30) - 8, top = Draw(24) - 8;
            box.place = {left, top, left + Draw(24), top + Draw(20)};
        } else if (event == 1) {
            box.cover = Draw(3) == 0 ? Rectangle{} : Rectangle{box.place.left + 2, box.place.top, 25, 20};
            box.dirty = true;
        } else if (event == 2) {
            box.SetVisible(shown[i] = Draw(3) != 0);
        } else if (event == 3) {
            box.colour += 8;
            box.dirty = true;
        }
    }

    std::mt19937 random;
    Group<Grid> group;
    std::array<Box, count> boxes;
    std::array<bool, count> shown;
    int32_t targetWidth = 30;
};

TEST(Compositor, EveryStepEqualsPaintingFromNothingAndNoChangePaintsNothing) {
    for (uint32_t seed = 1; seed <= 40; ++seed) {
        Walk walk(seed);
        for (int32_t step = 0; step < 150; ++step) {
            const Composition composition = walk.Step(true);
            if (walk.grid.AllocatedWidth() == 0)
                ASSERT_TRUE(composition.content.IsEmpty());
            else
                ASSERT_EQ(walk.grid, walk.Painted()) << "seed " << seed << ", step " << step;
            ASSERT_TRUE(walk.Step(false).damage.IsEmpty()) << "seed " << seed << ", step " << step;
        }
    }
}

TEST(Compositor, MovedHiddenAndRemovedElementsDamageWhatDiffers) {
    Group<Grid> group;
    Grid grid;
    const auto step = [&] { return Compose(group, grid, 40, 30, 1.0F, ComposeFrame{.kernels = scalarKernels}, {}); };
    Box box(1, {0, 0, 10, 10}), other(2, {20, 0, 30, 10});
    group.AddChild(box);
    EXPECT_EQ(step().damage, RegionOf({0, 0, 40, 30}));
    {
        const MemoryCount memory;
        EXPECT_TRUE(step().damage.IsEmpty());
        EXPECT_EQ(memory.Attempts(), 0);
    }
    group.AddChild(other);
    EXPECT_EQ(step().damage, RegionOf(other.place));
    other.TakePainted();
    box.place = {2, 0, 12, 10};
    EXPECT_EQ(step().damage, RegionUnion(RegionOf({0, 0, 2, 10}), RegionOf({10, 0, 12, 10})));
    box.SetVisible(false);
    EXPECT_EQ(step().damage, RegionOf(box.place));
    box.Remove();
    EXPECT_EQ(step().content, RegionOf(other.place));
    EXPECT_TRUE(other.TakePainted().IsEmpty());
}

}  // namespace
}  // namespace clarivex
