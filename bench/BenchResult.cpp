#include <bench/BenchResult.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace Corvane::Bench {

namespace {

QJsonArray toArray(const std::vector<double>& samples)
{
    QJsonArray array;
    for (const double sample : samples) {
        array.append(sample);
    }
    return array;
}

} // namespace

void BenchResult::print() const
{
    QJsonObject object{{"id", id}, {"unit", unit}, {"samples", toArray(samples)}};
    if (!limitSamples.empty()) {
        object.insert("limit_samples", toArray(limitSamples));
    }
    if (!goal.kind.isEmpty()) {
        object.insert("goal", QJsonObject{{goal.kind, goal.bound}});
    }
    std::printf("%s\n", QJsonDocument(object).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

} // namespace Corvane::Bench
