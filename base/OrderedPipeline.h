#pragma once

// Work for several threads whose results come back in the order in which it was given: what can be done for
// the next items in advance is done by threads of this object, while its owner keeps everything that has to
// happen in order. It owns its threads; the owner, one thread, gives and takes, and bounds the memory by how
// much it gives before it takes.

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

template <class Result>
class COrderedPipeline {
public:
    using Task = std::function<Result()>;

    /// At most `threads` threads, fewer where the system has no more. Without any, Take does the work itself.
    explicit COrderedPipeline(unsigned threads)
    {
        m_aThreads.reserve(threads);
        try {
            for (unsigned i = 0; i < threads; ++i)
                m_aThreads.emplace_back([this] { Work(); });
        } catch (const std::system_error&) {  // those that could be started do the work
        }
    }
    /// Waits for the tasks that are being done; the others are dropped.
    ~COrderedPipeline()
    {
        {
            const std::lock_guard lock(m_oMutex);
            m_bEnding = true;
        }
        m_oGiven.notify_all();
        for (std::thread& thread : m_aThreads)
            thread.join();
    }
    COrderedPipeline(const COrderedPipeline&) = delete;
    COrderedPipeline& operator=(const COrderedPipeline&) = delete;

    /// The task may run on any thread, and not at all when its result is dropped. Whatever it refers to must
    /// outlive this object.
    void Give(Task task)
    {
        auto item = std::make_shared<Item>();
        item->task = std::move(task);
        m_aPending.push_back(item);
        {
            const std::lock_guard lock(m_oMutex);
            m_aWaiting.push_back(std::move(item));
        }
        m_oGiven.notify_one();
    }

    /// Tasks that were given and whose results were neither taken nor dropped.
    std::size_t Pending() const { return m_aPending.size(); }

    /// The result of the oldest pending task, of which there must be one. Waits for it; meanwhile `idle`, if
    /// there is one, is called every few milliseconds. Throws what the task threw.
    Result Take(const std::function<void()>& idle = {})
    {
        const std::shared_ptr<Item> item = std::exchange(m_aPending.front(), nullptr);
        m_aPending.pop_front();
        if (m_aThreads.empty())
            Do(*item);
        else
            WaitFor(*item, idle);
        if (item->failure)
            std::rethrow_exception(item->failure);
        return std::move(*item->result);
    }

    /// Does without the result of the oldest pending task, of which there must be one. Does not wait.
    void Drop()
    {
        const std::lock_guard lock(m_oMutex);
        std::erase(m_aWaiting, m_aPending.front());
        m_aPending.pop_front();
    }

private:
    static constexpr std::chrono::milliseconds kIdleStep{20};

    struct Item {
        Task task;
        std::optional<Result> result;
        std::exception_ptr failure;
        bool isDone = false;  // guarded by the mutex; the rest is the worker's until then
    };

    static void Do(Item& item)
    {
        try {
            item.result.emplace(item.task());
        } catch (...) {  // rethrown by Take
            item.failure = std::current_exception();
        }
        item.task = nullptr;
    }

    void Work()
    {
        std::unique_lock lock(m_oMutex);
        for (;;) {
            m_oGiven.wait(lock, [this] { return m_bEnding || !m_aWaiting.empty(); });
            if (m_bEnding)
                return;
            // The pipeline's owner may drop its share of the item meanwhile.
            const std::shared_ptr<Item> item = std::move(m_aWaiting.front());
            m_aWaiting.pop_front();
            lock.unlock();
            Do(*item);
            lock.lock();
            item->isDone = true;
            m_oDone.notify_one();
        }
    }

    void WaitFor(const Item& item, const std::function<void()>& idle)
    {
        std::unique_lock lock(m_oMutex);
        const auto isDone = [&item] { return item.isDone; };
        if (!idle) {
            m_oDone.wait(lock, isDone);
            return;
        }
        while (!m_oDone.wait_for(lock, kIdleStep, isDone)) {
            lock.unlock();
            idle();
            lock.lock();
        }
    }

    std::deque<std::shared_ptr<Item>> m_aPending;  // the owner's, oldest first
    std::mutex m_oMutex;
    std::condition_variable m_oGiven;
    std::condition_variable m_oDone;
    std::deque<std::shared_ptr<Item>> m_aWaiting;
    bool m_bEnding = false;
    std::vector<std::thread> m_aThreads;
};

/// Threads for work that is asked to use `wanted`; 0 asks for one for every core.
inline unsigned ThreadsFor(unsigned wanted)
{
    constexpr unsigned kMostThreads = 64;
    const unsigned threads = wanted != 0 ? wanted : std::thread::hardware_concurrency();
    return threads == 0 ? 1 : (threads < kMostThreads ? threads : kMostThreads);
}
