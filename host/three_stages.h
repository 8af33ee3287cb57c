// A reader, a worker and a writer that run at once, with a bounded number of items between them.
#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace clarivex {

/// Items that go round between two threads, one that fills them and one that uses what is in them.
template <class Item>
class ItemLoop {
public:
    explicit ItemLoop(std::vector<Item>& items) {
        for (Item& item : items) empty.push_back(&item);
    }

    /// The next item to fill; waits for one. Null when nobody wants it any more.
    Item* TakeEmpty() {
        std::unique_lock held(lock);
        changed.wait(held, [this] { return stopped || !empty.empty(); });
        return stopped ? nullptr : TakeFirst(empty);
    }

    void PassOn(Item* item) { Append(filled, item); }

    /// Says that nothing more is filled.
    void End() { Raise(ended); }

    /// The next item to use, in the order in which they were passed on; waits for one. Null behind the last.
    Item* TakeFilled() {
        std::unique_lock held(lock);
        changed.wait(held, [this] { return stopped || ended || !filled.empty(); });
        return stopped || filled.empty() ? nullptr : TakeFirst(filled);
    }

    void GiveBack(Item* item) { Append(empty, item); }

    /// Says that nothing more is wanted: both threads come to an end, whatever is still on its way.
    void Stop() { Raise(stopped); }

private:
    static Item* TakeFirst(std::deque<Item*>& items) {
        Item* const first = items.front();
        items.pop_front();
        return first;
    }

    void Append(std::deque<Item*>& items, Item* item) {
        {
            const std::lock_guard held(lock);
            items.push_back(item);
        }
        changed.notify_one();
    }

    void Raise(bool& flag) {
        {
            const std::lock_guard held(lock);
            flag = true;
        }
        changed.notify_all();
    }

    std::mutex lock;
    std::condition_variable changed;  // one thread waits at most: for an empty item, or for a filled one
    std::deque<Item*> empty, filled;
    bool ended = false;
    bool stopped = false;
};

/// Runs an action and gives what it threw; null when it came to its end.
template <class Action>
std::exception_ptr CaughtFrom(Action action) {
    try {
        action();
        return nullptr;
    } catch (...) {
        return std::current_exception();
    }
}

/// Stops a loop when it goes, before the threads at both ends of it are waited for.
template <class Item>
struct StopAtEnd {
    ItemLoop<Item>& loop;
    ~StopAtEnd() { loop.Stop(); }
};

/// Fills items until `read` has none, or nobody wants any.
template <class Item, class Read>
void ReadAll(ItemLoop<Item>& loop, Read& read) {
    for (Item* item = loop.TakeEmpty(); item && read(*item); item = loop.TakeEmpty()) loop.PassOn(item);
}

template <class Input, class Output, class Work>
void WorkAll(ItemLoop<Input>& from, ItemLoop<Output>& to, Work& work) {
    for (Input* input = from.TakeFilled(); input; input = from.TakeFilled()) {
        Output* const output = to.TakeEmpty();
        if (!output) return;
        work(*input, *output);
        from.GiveBack(input);
        to.PassOn(output);
    }
}

template <class Item, class Write>
void WriteAll(ItemLoop<Item>& loop, Write& write) {
    for (Item* item = loop.TakeFilled(); item; item = loop.TakeFilled()) {
        write(*item);
        loop.GiveBack(item);
    }
}

/// Reads, works and writes until `read` gives false: `read` and `write` on threads of their own, `work` on the caller's.
///
/// inputs, outputs  what passes between them, at least one each; used again and again, so as many as may be under way
/// read             bool (Input&): fills an item, false when there is none
/// work             void (Input&, Output&)
/// write            void (Output&)
/// wake             void (): called, on any thread, when `read` may be waiting for something that is not wanted any more
/// throws           what the first of them to fail has thrown, once all have ended. What was read before `read` failed is
///                  still written; before a failure of `work` so is what it had finished.
template <class Input, class Output, class Read, class Work, class Write, class Wake>
void RunThreeStages(std::vector<Input>& inputs, std::vector<Output>& outputs, Read read, Work work, Write write,
                    Wake wake) {
    ItemLoop<Input> toWork(inputs);
    ItemLoop<Output> toWrite(outputs);
    std::exception_ptr readError, workError, writeError;
    const auto stopReading = [&] {
        toWork.Stop();
        wake();
    };
    {
        const std::jthread reader([&] {
            readError = CaughtFrom([&] { ReadAll(toWork, read); });
            toWork.End();
        });
        const StopAtEnd<Input> stopsReader{toWork};
        const std::jthread writer([&] {
            writeError = CaughtFrom([&] { WriteAll(toWrite, write); });
            toWrite.Stop();
            if (writeError) stopReading();
        });
        workError = CaughtFrom([&] { WorkAll(toWork, toWrite, work); });
        toWrite.End();
        if (workError) stopReading();
    }
    for (const std::exception_ptr& error : {writeError, workError, readError})
        if (error) std::rethrow_exception(error);
}

}  // namespace clarivex
