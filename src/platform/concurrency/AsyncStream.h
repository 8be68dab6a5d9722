// An unbounded queue from any number of producers to one consumer. Producing costs one node for the
// element and, when the consumer sleeps, one post to its executor. It never waits for the consumer,
// so it is safe on an audio thread. Elements come out in the order in which they were yielded;
// after `finish()` the queued elements are delivered, then the end. Before a stream with a waiting
// consumer is destroyed, it must be finished or the consumer cancelled.
#pragma once

#include "platform/concurrency/Continuation.h"

#include <atomic>
#include <memory>
#include <optional>
#include <utility>

namespace orlune {

template <typename Element>
class AsyncStream {
    struct Node {
        std::optional<Element> element; // absent at the end of the stream
        Node* next = nullptr;
    };

    struct Storage {
        // The newest node of a stack of produced nodes, or `asleep()` while the consumer waits.
        std::atomic<Node*> newest = nullptr;
        std::atomic<bool> finished = false;
        // Written by the consumer before it publishes `asleep()`, and read by the one producer
        // whose exchange removes that mark; the exchange orders the two accesses.
        orlune::Continuation<std::monostate> sleeper;
        Node asleepMark;

        // Oldest first; only used by the consumer.
        Node* taken = nullptr;
        bool ended = false;

        Node* asleep() { return &asleepMark; }

        ~Storage() {
            Node* newestNode = newest.load();
            if (newestNode != asleep()) {
                release(newestNode);
            }
            release(taken);
        }

        static void release(Node* node) {
            while (node) {
                delete std::exchange(node, node->next);
            }
        }

        void push(std::optional<Element> element) {
            auto* node = new Node{std::move(element), nullptr};
            Node* seen = newest.load(std::memory_order_relaxed);
            do {
                node->next = seen == asleep() ? nullptr : seen;
            } while (!newest.compare_exchange_weak(seen, node, std::memory_order_acq_rel,
                                                   std::memory_order_relaxed));
            if (seen == asleep()) {
                std::exchange(sleeper, {}).resume();
            }
        }

        /// Takes all produced nodes and reverses them, oldest first.
        void takeProduced() {
            Node* node = newest.exchange(nullptr, std::memory_order_acq_rel);
            while (node) {
                Node* older = node->next;
                node->next = taken;
                taken = std::exchange(node, older);
            }
        }
    };

  public:
    /// The producing end. Copies share the stream and may be used on any thread.
    class Continuation {
      public:
        Continuation() = default;
        /// Dropped when the stream has been finished.
        void yield(Element element) const {
            if (!storage_->finished.load(std::memory_order_acquire)) {
                storage_->push(std::move(element));
            }
        }
        /// Later calls do nothing.
        void finish() const {
            if (!storage_->finished.exchange(true)) {
                storage_->push(std::nullopt);
            }
        }

      private:
        friend AsyncStream;
        explicit Continuation(std::shared_ptr<Storage> storage) : storage_(std::move(storage)) {}
        std::shared_ptr<Storage> storage_;
    };

    AsyncStream() : storage_(std::make_shared<Storage>()) {}

    Continuation continuation() const { return Continuation(storage_); }

    /// The next element, or none at the end. One consumer at a time. A cancelled wait throws
    /// `operation_aborted` and ends the stream, because its consumer has gone.
    Awaitable<std::optional<Element>> next() const {
        const auto storage = storage_;
        while (!storage->ended) {
            if (!storage->taken) {
                storage->takeProduced();
            }
            if (auto* node = storage->taken) {
                storage->taken = node->next;
                const std::unique_ptr<Node> owned(node);
                if (owned->element) {
                    co_return std::move(owned->element);
                }
                storage->ended = true; // drops what a producer added after the end
                break;
            }
            auto wait = withContinuation<std::monostate>([storage](auto continuation) {
                storage->sleeper = continuation;
                Node* expected = nullptr;
                if (!storage->newest.compare_exchange_strong(expected, storage->asleep(),
                                                             std::memory_order_acq_rel)) {
                    continuation.resume(); // an element arrived meanwhile
                }
            });
            try {
                co_await std::move(wait);
            } catch (...) {
                storage->finished = true;
                storage->ended = true;
                Node* expected = storage->asleep();
                storage->newest.compare_exchange_strong(expected, nullptr,
                                                        std::memory_order_acq_rel);
                throw;
            }
        }
        co_return std::nullopt;
    }

  private:
    std::shared_ptr<Storage> storage_;
};

} // namespace orlune
