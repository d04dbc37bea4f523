#pragma once

#include <QByteArray>

#include <chrono>
#include <cstddef>
#include <functional>
#include <list>
#include <mutex>

namespace Corvane::Server {

/// The wrong credentials that were tried lately, by the address that tried them: so many different ones
/// from an address and no more. What is tried again is no guess: a program with an old password repeats
/// it with each request. Any thread.
class WrongGuesses
{
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::size_t mostFromAddress = 10;
    static constexpr std::size_t mostAddresses = 1024; ///< the one that began first is forgotten
    static constexpr std::chrono::minutes memory{5};

    /// now tells the time.
    explicit WrongGuesses(std::function<Clock::time_point()> now = &Clock::now);

    enum class Verdict
    {
        Right,
        Wrong,
        TooMany ///< neither: it was not looked at
    };
    /// What the address is to hear of what it tried, for which digest stands. With TooMany, wait is how
    /// long it has to leave it.
    Verdict judge(const QByteArray& address, const QByteArray& digest, bool isRight,
                  std::chrono::seconds* wait);

private:
    struct Guess
    {
        QByteArray digest;
        Clock::time_point time; // of the first try
    };
    struct Guesser
    {
        QByteArray network;
        std::list<Guess> guesses; // the oldest at the front
    };

    std::list<Guesser>::iterator find(const QByteArray& network);
    Guesser& addGuesser(const QByteArray& network);
    Verdict enter(Guesser& guesser, const QByteArray& digest, bool isRight,
                  std::chrono::seconds* wait);

    const std::function<Clock::time_point()> now;
    std::mutex mutex;            // guards guessers
    std::list<Guesser> guessers; // who began last at the front
};

} // namespace Corvane::Server
