// Three std::threads' worth of stages over plain numbers: order, bounds, and ends of all kinds.
#include "host/three_stages.h"

#include <atomic>
#include <stdexcept>

#include "tests/support/test.h"

namespace clarivex {
namespace {

/// Reads 0, 1, 2 …, squares and collects; fails where it is told to.
struct Squares {
    static constexpr int never = -1;
    explicit Squares(int readFailure = never, int workFailure = never, int writeFailure = never)
        : readFails(readFailure), workFails(workFailure), writeFails(writeFailure) {}

    int count = 100;
    int readFails, workFails, writeFails;
    std::atomic<int> read = 0;
    std::atomic<bool> woken = false;
    std::vector<int> written;

    static void FailAt(int place, int failing, const char* side) {
        if (place == failing) throw std::runtime_error(side);
    }

    /// The side that failed; "" when none did.
    std::string Run(size_t underWay = 3) {
        std::vector<int> inputs(underWay), outputs(underWay);
        try {
            RunThreeStages(
                inputs, outputs,
                [&](int& item) {
                    FailAt(read, readFails, "read");
                    if (read == count) return false;
                    item = read++;
                    return true;
                },
                [&](int& input, int& output) {
                    FailAt(input, workFails, "work");
                    output = input * input;
                },
                [&](int& item) {
                    FailAt(static_cast<int>(written.size()), writeFails, "write");
                    written.push_back(item);
                },
                [&] { woken = true; });
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "";
    }

    bool AreInOrder() const {
        for (size_t i = 0; i < written.size(); ++i)
            if (written[i] != static_cast<int>(i * i)) return false;
        return true;
    }
};

TEST(ThreeStages, PassAllItemsInOrder) {
    for (const size_t underWay : {1u, 2u, 7u}) {
        Squares squares;
        EXPECT_EQ(squares.Run(underWay), "");
        EXPECT_EQ(squares.written.size(), 100u);
        EXPECT_TRUE(squares.AreInOrder());
        EXPECT_FALSE(squares.woken);
    }
    Squares none;
    none.count = 0;
    EXPECT_EQ(none.Run(), "");
    EXPECT_TRUE(none.written.empty());
}

TEST(ThreeStages, WhatWasFinishedBeforeAFailureIsWritten) {
    for (const int place : {0, 1, 50, 99}) {
        Squares reading(place);
        EXPECT_EQ(reading.Run(), "read");
        EXPECT_EQ(reading.written.size(), static_cast<size_t>(place));
        Squares working(Squares::never, place);
        EXPECT_EQ(working.Run(), "work");
        EXPECT_EQ(working.written.size(), static_cast<size_t>(place));
        EXPECT_TRUE(working.woken);
        Squares writing(Squares::never, Squares::never, place);
        EXPECT_EQ(writing.Run(), "write");
        EXPECT_LE(writing.read, place + 8) << "reading goes on although nothing can be written";
        for (const Squares* one : {&reading, &working, &writing}) EXPECT_TRUE(one->AreInOrder());
    }
    Squares all(20, 15, 5);
    EXPECT_EQ(all.Run(), "write") << "the one that is closest to what was lost";
}

TEST(ThreeStages, AReaderThatWaitsIsWokenWhenNobodyWantsMore) {
    std::vector<int> inputs(2), outputs(2);
    std::atomic<bool> woken = false;
    int given = 0;
    const auto run = [&] {
        RunThreeStages(
            inputs, outputs,
            [&](int&) {
                if (given++ == 0) return true;
                woken.wait(false);
                return false;
            },
            [](int&, int&) {}, [](int&) { throw std::runtime_error("write"); },
            [&] {
                woken = true;
                woken.notify_all();
            });
    };
    EXPECT_THROW(run(), std::runtime_error);
}

}  // namespace
}  // namespace clarivex
