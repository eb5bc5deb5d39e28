// Dates, beside ICU called directly with a calendar, or a format, that is made once and reused.
// Each works through the same 1,024 dates from 1970 to 2040, in Europe/Berlin.
//
//   Fields              six fields of a date, gregorianDateAndTimeComponentsForDate
//   FromFields          a date from six numbers, dateFromYear
//   Field               one field of a plain date, hourOfDay: with the user's calendar of the
//   moment DayOfEra            dayOfCommonEra; ICU: the Julian day Add dateByAddingYears, a month,
//   a day and an hour: fields, sums, a date WithZone            dateWithYear in a time zone that is
//   given StartOfDay          startOfDay of a calendar date StartOfNextMonth    startOfNextMonth of
//   a calendar date EqualToDay          equalToDay of two calendar dates Describe
//   descriptionWithCalendarFormat, "yyyy-MM-dd HH:mm:ss" DescribeWords       the same with "EEEE,
//   d. MMMM y" Convert             a percent pattern of 7 sequences into a Unicode pattern; no peer
#include "benchmarks/ratio_main.h"
#include "zqticker/foundation_additions/ZQTimeFormatPatternConverter.h"
#include "zqticker/foundation_additions/calendar_additions.h"
#include "zqticker/platform/calendar/Calendar.h"
#include "zqticker/platform/calendar/CalendarDate.h"

#include <QtCore/QString>

#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include <array>
#include <limits>
#include <memory>
#include <random>

using namespace Qt::StringLiterals;
using namespace zq::platform;

namespace {

constexpr const char* ZoneName = "Europe/Berlin";
constexpr std::size_t Count = 1024;

// Seconds since the reference date, the same in every run.
const std::array<double, Count>& instants() {
  static const std::array<double, Count> made = [] {
    std::array<double, Count> all{};
    std::mt19937_64 random(2009);
    std::uniform_int_distribution<qint64> seconds(-978'307'200, 1'230'000'000);
    for (double& instant : all)
      instant = static_cast<double>(seconds(random));
    return all;
  }();
  return made;
}

double milliseconds(double instant) {
  return (instant + TimeIntervalSince1970) * 1000;
}

TimeZone zone() {
  return TimeZone::timeZoneWithName(QString::fromLatin1(ZoneName)).value();
}

Calendar& calendar() {
  static Calendar made = zq::gregorianCalendar();
  return made;
}

std::unique_ptr<icu::GregorianCalendar> icuCalendar() {
  UErrorCode status = U_ZERO_ERROR;
  auto made = std::make_unique<icu::GregorianCalendar>(icu::TimeZone::createTimeZone(ZoneName),
                                                       icu::Locale::getUS(), status);
  made->setGregorianChange(std::numeric_limits<double>::lowest(), status);
  return made;
}

struct Fields {
  int year, month, day, hour, minute, second;
};

Fields icuFields(icu::Calendar& icu, double instant) {
  UErrorCode status = U_ZERO_ERROR;
  icu.setTime(milliseconds(instant), status);
  return {icu.get(UCAL_YEAR, status),   icu.get(UCAL_MONTH, status),
          icu.get(UCAL_DATE, status),   icu.get(UCAL_HOUR_OF_DAY, status),
          icu.get(UCAL_MINUTE, status), icu.get(UCAL_SECOND, status)};
}

double icuDate(icu::Calendar& icu, const Fields& fields) {
  UErrorCode status = U_ZERO_ERROR;
  icu.clear();
  icu.set(fields.year, fields.month, fields.day, fields.hour, fields.minute, fields.second);
  return icu.getTime(status);
}

// Runs `work` over all dates again and again.
template <class Work>
void forAllDates(benchmark::State& state, Work work) {
  while (state.KeepRunningBatch(Count))
    for (const double instant : instants())
      work(instant);
}

void Fields_(benchmark::State& state) {
  forAllDates(state, [&](double instant) {
    benchmark::DoNotOptimize(zq::gregorianDateAndTimeComponentsForDate(calendar(), Date(instant)));
  });
}
void FieldsICU(benchmark::State& state) {
  const auto icu = icuCalendar();
  forAllDates(state, [&](double instant) { benchmark::DoNotOptimize(icuFields(*icu, instant)); });
}

void FromFields(benchmark::State& state) {
  forAllDates(state, [&](double instant) {
    const int number = static_cast<int>(instant / 3e7);
    benchmark::DoNotOptimize(
        zq::dateFromYear(calendar(), 2001 + number, 6, 15, 12, 30, number & 31));
  });
}
void FromFieldsICU(benchmark::State& state) {
  const auto icu = icuCalendar();
  forAllDates(state, [&](double instant) {
    const int number = static_cast<int>(instant / 3e7);
    benchmark::DoNotOptimize(icuDate(*icu, {2001 + number, 5, 15, 12, 30, number & 31}));
  });
}

void Field(benchmark::State& state) {
  forAllDates(state,
              [&](double instant) { benchmark::DoNotOptimize(zq::hourOfDay(Date(instant))); });
}
void FieldICU(benchmark::State& state) {
  const auto icu = icuCalendar();
  forAllDates(state, [&](double instant) {
    UErrorCode status = U_ZERO_ERROR;
    icu->setTime(milliseconds(instant), status);
    benchmark::DoNotOptimize(icu->get(UCAL_HOUR_OF_DAY, status));
  });
}

void DayOfEra(benchmark::State& state) {
  forAllDates(state,
              [&](double instant) { benchmark::DoNotOptimize(zq::dayOfCommonEra(Date(instant))); });
}
void DayOfEraICU(benchmark::State& state) {
  const auto icu = icuCalendar();
  forAllDates(state, [&](double instant) {
    UErrorCode status = U_ZERO_ERROR;
    icu->setTime(milliseconds(instant), status);
    benchmark::DoNotOptimize(icu->get(UCAL_JULIAN_DAY, status) - 1'721'425);
  });
}

void Add(benchmark::State& state) {
  forAllDates(state, [&](double instant) {
    benchmark::DoNotOptimize(zq::dateByAddingYears(Date(instant), 0, 1, 1, 1, 0, 0));
  });
}
void AddICU(benchmark::State& state) {
  const auto icu = icuCalendar();
  forAllDates(state, [&](double instant) {
    Fields fields = icuFields(*icu, instant);
    ++fields.month;
    ++fields.day;
    ++fields.hour;
    benchmark::DoNotOptimize(icuDate(*icu, fields));
  });
}

void WithZone(benchmark::State& state) {
  const TimeZone berlin = zone();
  forAllDates(state, [&](double instant) {
    const int number = static_cast<int>(instant / 3e7);
    benchmark::DoNotOptimize(zq::dateWithYear(2001 + number, 6, 15, 12, 30, 0, berlin));
  });
}

void StartOfDay(benchmark::State& state) {
  const TimeZone berlin = zone();
  forAllDates(state, [&](double instant) {
    benchmark::DoNotOptimize(zq::startOfDay(CalendarDate(Date(instant), berlin)));
  });
}
void StartOfDayICU(benchmark::State& state) {
  const auto icu = icuCalendar();
  forAllDates(state, [&](double instant) {
    UErrorCode status = U_ZERO_ERROR;
    icu->setTime(milliseconds(instant), status);
    benchmark::DoNotOptimize(
        icuDate(*icu, {icu->get(UCAL_YEAR, status), icu->get(UCAL_MONTH, status),
                       icu->get(UCAL_DATE, status), 0, 0, 0}));
  });
}

void StartOfNextMonth(benchmark::State& state) {
  const TimeZone berlin = zone();
  forAllDates(state, [&](double instant) {
    benchmark::DoNotOptimize(zq::startOfNextMonth(CalendarDate(Date(instant), berlin)));
  });
}
// The start of the month, then its fields with a month more.
void StartOfNextMonthICU(benchmark::State& state) {
  const auto icu = icuCalendar();
  forAllDates(state, [&](double instant) {
    UErrorCode status = U_ZERO_ERROR;
    icu->setTime(milliseconds(instant), status);
    const double start =
        icuDate(*icu, {icu->get(UCAL_YEAR, status), icu->get(UCAL_MONTH, status), 1, 0, 0, 0});
    Fields fields = icuFields(*icu, start / 1000 - TimeIntervalSince1970);
    ++fields.month;
    benchmark::DoNotOptimize(icuDate(*icu, fields));
  });
}

void EqualToDay(benchmark::State& state) {
  const TimeZone berlin = zone();
  forAllDates(state, [&](double instant) {
    benchmark::DoNotOptimize(zq::equalToDay(CalendarDate(Date(instant), berlin),
                                            CalendarDate(Date(instant + 3600), berlin)));
  });
}
void EqualToDayICU(benchmark::State& state) {
  const auto icu = icuCalendar();
  const auto day = [&](double instant) {
    UErrorCode status = U_ZERO_ERROR;
    icu->setTime(milliseconds(instant), status);
    return std::array{icu->get(UCAL_DATE, status), icu->get(UCAL_MONTH, status),
                      icu->get(UCAL_YEAR, status)};
  };
  forAllDates(state, [&](double instant) {
    benchmark::DoNotOptimize(day(instant) == day(instant + 3600));
  });
}

void describe(benchmark::State& state, const QString& pattern) {
  const Locale locale(u"en_US"_s);
  forAllDates(state, [&](double instant) {
    benchmark::DoNotOptimize(zq::descriptionWithCalendarFormat(Date(instant), pattern, locale));
  });
}
void describeICU(benchmark::State& state, const char16_t* pattern) {
  UErrorCode status = U_ZERO_ERROR;
  icu::SimpleDateFormat format(icu::UnicodeString(pattern), icu::Locale::getUS(), status);
  format.adoptCalendar(icuCalendar().release());
  forAllDates(state, [&](double instant) {
    icu::UnicodeString text;
    benchmark::DoNotOptimize(format.format(milliseconds(instant), text));
    benchmark::DoNotOptimize(
        QString(reinterpret_cast<const QChar*>(text.getBuffer()), text.length()));
  });
}
void Describe(benchmark::State& state) {
  describe(state, u"yyyy-MM-dd HH:mm:ss"_s);
}
void DescribeICU(benchmark::State& state) {
  describeICU(state, u"yyyy-MM-dd HH:mm:ss");
}
void DescribeWords(benchmark::State& state) {
  describe(state, u"EEEE, d. MMMM y"_s);
}
void DescribeWordsICU(benchmark::State& state) {
  describeICU(state, u"EEEE, d. MMMM y");
}

void Convert(benchmark::State& state) {
  const auto converter = ZQTimeFormatPatternConverter::make();
  for (auto _ : state)
    benchmark::DoNotOptimize(
        converter->stringByReplacingOldTimeFormatPatternsInString(u"%A, %d.%m.%Y at %H:%M:%S"_s));
}

BENCHMARK(Fields_)->Name("Fields");
BENCHMARK(FieldsICU);
BENCHMARK(FromFields);
BENCHMARK(FromFieldsICU);
BENCHMARK(Field);
BENCHMARK(FieldICU);
BENCHMARK(DayOfEra);
BENCHMARK(DayOfEraICU);
BENCHMARK(Add);
BENCHMARK(AddICU);
BENCHMARK(WithZone);
BENCHMARK(StartOfDay);
BENCHMARK(StartOfDayICU);
BENCHMARK(StartOfNextMonth);
BENCHMARK(StartOfNextMonthICU);
BENCHMARK(EqualToDay);
BENCHMARK(EqualToDayICU);
BENCHMARK(Describe);
BENCHMARK(DescribeICU);
BENCHMARK(DescribeWords);
BENCHMARK(DescribeWordsICU);
BENCHMARK(Convert);

} // namespace

int main(int argc, char** argv) {
  qputenv("LC_ALL", "en_US.UTF-8");
  qputenv("TZ", ZoneName);
  return runBenchmarks(argc, argv,
                       {{"Fields", "FieldsICU"},
                        {"FromFields", "FromFieldsICU"},
                        {"Field", "FieldICU"},
                        {"DayOfEra", "DayOfEraICU"},
                        {"Add", "AddICU"},
                        {"WithZone", "FromFieldsICU"},
                        {"StartOfDay", "StartOfDayICU"},
                        {"StartOfNextMonth", "StartOfNextMonthICU"},
                        {"EqualToDay", "EqualToDayICU"},
                        {"Describe", "DescribeICU"},
                        {"DescribeWords", "DescribeWordsICU"}});
}
