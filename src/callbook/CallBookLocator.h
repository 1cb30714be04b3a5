#pragma once

#include "CallBook.h"
#include "CountryFile.h"
#include "EvaluatedSpot.h"
#include "SpotPipeline.h"

#include <QDateTime>
#include <QString>
#include <QStringView>

#include <optional>

namespace zkr {

struct Reception;

// Where a call is, as far as the program knows.
struct CallPosition {
    QString call;    // normalised
    QString locator; // as learned (four or six characters), or the country position's
    GeoPoint position;
    Located how = Located::CallBook; // CallBook or Country
    double uncertaintyKm = 0;
    QDateTime learned;                   // CallBook: when
    LearnedFrom from = LearnedFrom::Own; // CallBook: from what
    QString country;                     // the call's country, when the file knows it
};

// Learns where calls are and gives cluster spots whose comment does not
// locate both ends an approximate path:
// - a spot's end is put at the locator the call book has for the call as
//   written (a subsquare within 5 km, a square within 100 km), else at its
//   country's position with the country's uncertainty;
// - a comment with one locator: the locator is taken for the end whose own
//   position (book or country) it lies near, when exactly one of the two
//   does; otherwise it is not used. It is never learned;
// - the path is computed only when the farther-off end is known to within
//   the limit (300 km by default), on 28 to 148 MHz (the bands where Es
//   carries: 10 m, 6 m, 4 m, 2 m), for Es and unmarked spots (not MS, TR,
//   EME or SAT), and kept only when it is one Es hop long (600 to 2,300 km):
//   a shorter path is ground wave or tropo, a longer one not one cloud.
// The spot's printed line, runs and `es` are never touched.
// Not thread-safe: used from the thread of the pipeline.
class CallBookLocator : public SpotLocator {
public:
    static constexpr double DefaultUncertaintyLimitKm = 300;
    static constexpr double LowestEsMhz = 28;
    static constexpr double HighestEsMhz = 148;
    static constexpr double SubsquareKm = 5;
    static constexpr double SquareKm = 100;

    explicit CallBookLocator(qsizetype maxEntries = 500'000);

    CallBook &book() { return book_; }
    const CallBook &book() const { return book_; }
    // Load it through countries().load(); without one, calls are located
    // through the book alone.
    CountryFile &countries() { return countries_; }
    const CountryFile &countries() const { return countries_; }

    void setUncertaintyLimitKm(double km) { limitKm_ = km; }
    double uncertaintyLimitKm() const { return limitKm_; }

    // Learns both ends of a reception report that carry a locator.
    void learn(const Reception &report);
    void learnOwn(QStringView call, QStringView locator, const QDateTime &when);

    // Where `call` is: the book's locator, else its country; nothing for a
    // call neither knows, and for /MM and /AM.
    std::optional<CallPosition> where(QStringView call) const;

    // Learns from a cluster spot (the spotter's locator after the time, a
    // comment "my locator <mode> his locator") and sets its `approximate`.
    void locate(EvaluatedSpot &spot, QStringView received,
                const AnalysisSettings &settings) override;

private:
    struct End {
        QString locator;
        GeoPoint position;
        Located how = Located::Comment;
        double uncertaintyKm = 0;
    };

    static End endOf(const CallBookEntry &entry);
    static End endOf(const CountryPosition &country);
    std::optional<End> endOf(QStringView call) const;
    // Whether `locator` may be where `call` is: near its country's position
    // (true when the country is unknown).
    bool inCountry(QStringView call, QStringView locator) const;
    void learnFromSpot(const EvaluatedSpot &spot, QStringView received,
                       const QStringList &commentLocators);

    CallBook book_;
    CountryFile countries_;
    double limitKm_ = DefaultUncertaintyLimitKm;
};

} // namespace zkr
