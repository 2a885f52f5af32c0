// The ways in which this code base writes awaits, tried on the compiler at hand: each value that crosses an await must
// be made and destroyed exactly once. Compilers have had faults here; the address sanitizer sees what counting misses.

#include "runtime/Detached.hpp"
#include "runtime/Semaphore.hpp"
#include "runtime/Sleep.hpp"
#include "support/VirtualMachine.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace sentrel {
namespace {

using namespace std::chrono_literals;

/// A value that owns memory and is counted while it lives.
class Counted {
public:
    explicit Counted(std::string text) : text_(std::make_unique<std::string>(std::move(text))) { ++alive; }
    Counted(const Counted& other) : text_(std::make_unique<std::string>(*other.text_)) { ++alive; }
    Counted(Counted&& other) noexcept : text_(std::move(other.text_)) { ++alive; }
    Counted& operator=(Counted other) noexcept
    {
        std::swap(text_, other.text_);
        return *this;
    }
    ~Counted() { --alive; }

    [[nodiscard]] const std::string& text() const { return *text_; }
    static inline int alive = 0;

private:
    std::unique_ptr<std::string> text_;
};

struct Letter {
    Counted to;
    std::optional<Counted> copy;
    std::vector<std::string> lines;
};

Async<Counted> echo(Counted value)
{
    co_await sleepFor(1ms);
    co_return value;
}

Async<std::string> deliver(Letter letter)
{
    co_await sleepFor(1ms);
    std::string text = letter.to.text();
    for (const std::string& line : letter.lines) {
        text += line;
    }
    co_return text;
}

Async<std::unique_ptr<Counted>> moveOnly(std::unique_ptr<Counted> value)
{
    co_await sleepFor(1ms);
    co_return value;
}

Async<bool> isLong(Counted value)
{
    co_await sleepFor(1ms);
    co_return value.text().size() > 3;
}

template <class Function> Async<std::string> call(Function function)
{
    co_await sleepFor(1ms);
    co_return function();
}

Async<Counted> failAfter(Duration span, Counted value)
{
    co_await sleepFor(span);
    throw std::runtime_error{value.text()};
}

Async<std::vector<Counted>> several(Counted first)
{
    co_await sleepFor(1ms);
    std::vector<Counted> all;
    all.push_back(first);
    all.push_back(std::move(first));
    co_return all;
}

Async<std::string> valuesThroughAwaits()
{
    const auto fromTemporary = co_await echo(Counted("a"));
    const auto fromMove = co_await echo(std::move(fromTemporary));
    co_return fromMove.text();
}

Async<std::string> moveOnlyThroughAwaits()
{
    auto first = co_await moveOnly(std::make_unique<Counted>("move"));
    auto second = co_await moveOnly(std::move(first));
    co_return first ? "not moved" : second->text();
}

Async<std::string> namedAggregates()
{
    Letter letter{.to = Counted("to"), .copy = Counted("copy"), .lines = {"one", "two"}};
    const auto text = co_await deliver(std::move(letter));
    co_return text;
}

Async<std::string> namedLambdas()
{
    auto sayLater = [word = Counted("lambda")] { return word.text(); };
    const auto said = co_await call(std::move(sayLater));
    co_return said;
}

Async<std::string> namedConditions()
{
    const bool isShort = co_await isLong(Counted("ab"));
    if (isShort) {
        co_return "wrong";
    }
    int turns = 0;
    bool more = true;
    while (more) {
        more = co_await isLong(Counted(std::string(static_cast<std::size_t>(6 - turns), 'x')));
        ++turns;
    }
    co_return std::to_string(turns);
}

Async<std::string> branchesInsteadOfConditionalOperators()
{
    std::string text;
    for (const bool first : {true, false}) {
        if (first) {
            const auto value = co_await echo(Counted("yes"));
            text += value.text();
        } else {
            const auto value = co_await echo(Counted("no"));
            text += value.text();
        }
    }
    co_return text;
}

Async<std::string> namedRanges()
{
    std::string text;
    const auto all = co_await several(Counted("r"));
    for (const Counted& each : all) {
        const auto echoed = co_await echo(each);
        text += echoed.text();
    }
    co_return text;
}

Async<std::string> errorsThroughAwaits()
{
    std::string text;
    try {
        const auto never = co_await failAfter(1ms, Counted("late "));
        text += never.text();
    } catch (const std::runtime_error& error) {
        text += error.what();
    }
    std::exception_ptr failure;
    try {
        co_await failAfter(0ms, Counted("kept"));
    } catch (...) {
        failure = std::current_exception();
    }
    co_await sleepFor(1ms);
    try {
        std::rethrow_exception(failure);
    } catch (const std::runtime_error& error) {
        text += error.what();
    }
    co_return text;
}

Async<Counted> awaitedReturn()
{
    co_return co_await echo(Counted("return"));
}

Async<std::string> awaitedReturns()
{
    const auto value = co_await awaitedReturn();
    co_return value.text();
}

struct Idiom {
    std::string name;
    Async<std::string> (*use)();
    std::string told;
};

class Coroutines : public testing::TestWithParam<Idiom> {};

TEST_P(Coroutines, MakeAndDestroyEachValueOnce)
{
    Counted::alive = 0;
    test::VirtualMachine machine;
    std::string told;
    struct Teller {
        static Async<void> tell(Async<std::string> work, std::string& told) { told = co_await std::move(work); }
    };
    const auto task = machine.mainActor.spawn(Teller::tell(GetParam().use(), told));
    machine.clock.runUntilIdle();
    EXPECT_TRUE(task.isFinished());
    EXPECT_EQ(told, GetParam().told);
    EXPECT_EQ(Counted::alive, 0);
}

TEST_P(Coroutines, AreDestroyedWhereverTheyAreSuspended)
{
    for (int step = 0; step < 12; ++step) {
        Counted::alive = 0;
        {
            test::VirtualMachine machine;
            machine.mainActor.spawn(GetParam().use());
            machine.clock.advance(step * 500us);
        }
        EXPECT_EQ(Counted::alive, 0) << "suspended at step " << step;
    }
}

INSTANTIATE_TEST_SUITE_P(With, Coroutines,
                         testing::Values(Idiom{"Values", &valuesThroughAwaits, "a"},
                                         Idiom{"MoveOnlyResults", &moveOnlyThroughAwaits, "move"},
                                         Idiom{"NamedAggregates", &namedAggregates, "toonetwo"},
                                         Idiom{"NamedLambdas", &namedLambdas, "lambda"},
                                         Idiom{"NamedConditions", &namedConditions, "4"},
                                         Idiom{"Branches", &branchesInsteadOfConditionalOperators, "yesno"},
                                         Idiom{"NamedRanges", &namedRanges, "rr"},
                                         Idiom{"Errors", &errorsThroughAwaits, "late kept"},
                                         Idiom{"AwaitedReturns", &awaitedReturns, "return"}),
                         [](const auto& instance) { return instance.param.name; });

TEST(CoroutineChains, GoOnForeverWithoutGrowingTheStack)
{
    test::VirtualMachine machine;
    struct Loop {
        static Async<int> next(int number) { co_return number + 1; }
        static Async<void> run(int turns, int& reached)
        {
            for (int i = 0; i < turns; ++i) {
                reached = co_await next(reached);
            }
        }
    };
    int reached = 0;
    machine.mainActor.spawn(Loop::run(300'000, reached));
    machine.clock.runReady();
    EXPECT_EQ(reached, 300'000);
}

} // namespace
} // namespace sentrel
