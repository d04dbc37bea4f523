#include <server/WrongGuesses.h>

#include <corvane/core/Application.h>

#include <QDateTime>
#include <QHostAddress>
#include <QString>

#include <algorithm>
#include <utility>

namespace Corvane::Server {

namespace {

constexpr int networkBits = 64; // of an address of IPv6: whoever has one has all that begin like it

// What one guesser may have many of.
QByteArray networkOf(const QByteArray& address)
{
    const QHostAddress parsed(QString::fromLatin1(address));
    bool isFour = false;
    const quint32 four = parsed.toIPv4Address(&isFour); // also of those written as IPv6
    if (isFour) {
        return QHostAddress(four).toString().toLatin1();
    }
    if (parsed.protocol() == QAbstractSocket::IPv6Protocol) {
        const Q_IPV6ADDR bytes = parsed.toIPv6Address();
        return QByteArray(reinterpret_cast<const char*>(bytes.c), networkBits / 8);
    }
    return address;
}

} // namespace

WrongGuesses::WrongGuesses(std::function<Clock::time_point()> clock) : now(std::move(clock)) {}

WrongGuesses::Verdict WrongGuesses::judge(const QByteArray& address, const QByteArray& digest,
                                          bool isRight, std::chrono::seconds* wait)
{
    const QByteArray network = networkOf(address);
    bool isFull = false;
    Verdict verdict = Verdict::Right;
    {
        const std::lock_guard<std::mutex> guard(mutex);
        const auto known = find(network);
        if (isRight && known == guessers.end()) {
            return Verdict::Right;
        }
        Guesser& guesser = known == guessers.end() ? addGuesser(network) : *known;
        const std::size_t before = guesser.guesses.size();
        verdict = enter(guesser, digest, isRight, wait);
        isFull = guesser.guesses.size() > before && guesser.guesses.size() == mostFromAddress;
    }
    if (isFull) {
        Application::logMessage(
            QStringLiteral("%1 has tried %2 wrong passwords and is kept out for a while")
                .arg(QString::fromLatin1(address))
                .arg(mostFromAddress),
            LogLevel::Warning, QDateTime::currentDateTime());
    }
    return verdict;
}

// The next ones under mutex.
std::list<WrongGuesses::Guesser>::iterator WrongGuesses::find(const QByteArray& network)
{
    return std::find_if(guessers.begin(), guessers.end(),
                        [&network](const Guesser& guesser) { return guesser.network == network; });
}

WrongGuesses::Guesser& WrongGuesses::addGuesser(const QByteArray& network)
{
    guessers.push_front({network, {}});
    if (guessers.size() > mostAddresses) {
        guessers.pop_back();
    }
    return guessers.front();
}

WrongGuesses::Verdict WrongGuesses::enter(Guesser& guesser, const QByteArray& digest, bool isRight,
                                          std::chrono::seconds* wait)
{
    std::list<Guess>& guesses = guesser.guesses;
    const Clock::time_point time = now();
    guesses.remove_if([time](const Guess& guess) { return guess.time + memory <= time; });
    if (guesses.size() >= mostFromAddress) {
        *wait = std::chrono::ceil<std::chrono::seconds>(guesses.front().time + memory - time);
        return Verdict::TooMany;
    }
    if (isRight) {
        return Verdict::Right;
    }
    const bool isKnown = std::any_of(guesses.begin(), guesses.end(), [&digest](const Guess& guess) {
        return guess.digest == digest;
    });
    if (!isKnown) {
        guesses.push_back({digest, time});
    }
    return Verdict::Wrong;
}

} // namespace Corvane::Server
