// A queue under thousands of random operations, beside one of plain vectors.
#include "app/display/StripQueue.h"
#include "tests/app/FakeItem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

using zq::app::StripQueue;
using zq::app::testing::fake;
using zq::app::testing::FakeItem;
using zq::app::testing::nameOf;

namespace {

struct Known {
  StripQueue::EntryRef entry;
  std::string name;
  double level = 0;
  std::uint64_t ticket = 0;
  std::uint64_t rank = 0;
  std::uint64_t round = 0;
  double readyAt = 0;
};
using Line = std::vector<Known>;

// The rules of the queue in vectors that are searched from end to end.
class Model {
 public:
  Line fresh, again, returned, resting;
  std::uint64_t nextTicket = 1;
  std::uint64_t nextRank = 1;

  std::vector<Line*> lines() { return {&fresh, &again, &returned, &resting}; }

  Line& lineOf(const StripQueue::EntryRef& entry) {
    for (Line* line : lines())
      for (const Known& known : *line)
        if (known.entry == entry)
          return *line;
    ADD_FAILURE() << "an entry is not known";
    return fresh;
  }

  static Line::iterator find(Line& line, const StripQueue::EntryRef& entry) {
    return std::find_if(line.begin(), line.end(),
                        [&](const Known& known) { return known.entry == entry; });
  }

  Known take(const StripQueue::EntryRef& entry) {
    Line& line = lineOf(entry);
    const auto place = find(line, entry);
    Known known = *place;
    line.erase(place);
    return known;
  }

  void add(Known known) {
    auto place = fresh.end();
    while (place != fresh.begin() && std::prev(place)->level < known.level)
      --place;
    const bool hasPeer = place != fresh.begin() && std::prev(place)->level == known.level;
    known.ticket = nextTicket;
    if (known.rank != 0 && hasPeer)
      known.ticket = std::prev(place)->ticket;
    else if (known.rank != 0 && !again.empty())
      known.ticket = again.front().ticket;
    else
      ++nextTicket;
    fresh.insert(place, known);
  }

  void putAgain(Known known) {
    known.ticket = nextTicket++;
    auto behind = again.end();
    for (auto place = again.end(); known.rank != 0 && place != again.begin();) {
      --place;
      if (place->round != known.round || (place->rank != 0 && place->rank < known.rank))
        break;
      if (place->rank != 0)
        behind = place;
    }
    if (behind != again.end())
      known.ticket = behind->ticket;
    again.insert(behind, known);
  }

  void rest(Known known, double time) {
    known.readyAt = time;
    const auto later = std::find_if(resting.begin(), resting.end(),
                                    [&](const Known& other) { return other.readyAt > time; });
    resting.insert(later, known);
  }

  // Those of the line that are arranged change places; each place keeps its ticket.
  static void sortArranged(Line& line, bool isFresh) {
    std::vector<std::size_t> places;
    Line arranged;
    for (std::size_t i = 0; i < line.size(); ++i)
      if (line[i].rank != 0) {
        places.push_back(i);
        arranged.push_back(line[i]);
      }
    std::stable_sort(arranged.begin(), arranged.end(), [&](const Known& a, const Known& b) {
      if (isFresh && a.level != b.level)
        return a.level > b.level;
      return !isFresh && a.round != b.round ? a.round < b.round : a.rank < b.rank;
    });
    for (std::size_t i = 0; i < places.size(); ++i) {
      const std::uint64_t ticket = line[places[i]].ticket;
      line[places[i]] = arranged[i];
      line[places[i]].ticket = ticket;
    }
  }

  void arrange(const std::vector<StripQueue::EntryRef>& order) {
    std::vector<Known*> named;
    std::vector<std::uint64_t> ranks;
    for (const StripQueue::EntryRef& entry : order)
      if (Known& known = *find(lineOf(entry), entry); known.rank != 0) {
        named.push_back(&known);
        ranks.push_back(known.rank);
      }
    std::sort(ranks.begin(), ranks.end());
    for (std::size_t i = 0; i < named.size(); ++i)
      named[i]->rank = ranks[i];
    sortArranged(fresh, true);
    sortArranged(again, false);
  }

  bool move(const StripQueue::EntryRef& entry, const StripQueue::EntryRef& before) {
    const bool rests = &lineOf(entry) == &resting;
    const bool isLast = !before || &lineOf(before) == &resting;
    if (entry == before || (isLast && rests))
      return false;
    Known known = take(entry);
    known.rank = 0;
    if (!isLast) {
      Line& line = lineOf(before);
      const auto place = find(line, before);
      known.level = place->level;
      known.ticket = place->ticket;
      if (&line == &again)
        known.round = place->round;
      line.insert(place, known);
      return true;
    }
    known.ticket = nextTicket++;
    if (again.empty()) {
      if (!fresh.empty())
        known.level = std::min(known.level, fresh.back().level);
      fresh.push_back(known);
    } else {
      known.level = again.back().level;
      known.round = again.back().round;
      again.push_back(known);
    }
    return true;
  }

  std::string inOrder(std::uint64_t round) const {
    std::string names;
    std::size_t f = 0, r = 0, a = 0;
    for (;;) {
      const bool hasFresh = f < fresh.size();
      if (hasFresh && fresh[f].level > 0)
        names += fresh[f++].name;
      else if (r < returned.size())
        names += returned[r++].name;
      else if (a < again.size() &&
               (!hasFresh || (again[a].round != round && again[a].ticket < fresh[f].ticket)))
        names += again[a++].name;
      else if (hasFresh)
        names += fresh[f++].name;
      else
        break;
      names += " ";
    }
    for (const Known& known : resting)
      names += known.name + " ";
    return names;
  }

  std::vector<StripQueue::EntryRef> entries() {
    std::vector<StripQueue::EntryRef> all;
    for (Line* line : lines())
      for (const Known& known : *line)
        all.push_back(known.entry);
    return all;
  }
};

class Walk {
 public:
  explicit Walk(unsigned seed) : random_(seed) {}

  void step() {
    const std::string before = text();
    const std::uint64_t revision = queue_.revision();
    const std::uint64_t round = round_;
    const std::vector<StripQueue::EntryRef> all = model_.entries();
    act(all);
    ASSERT_EQ(text(), model_.inOrder(round_)) << action_;
    ASSERT_EQ(queue_.size(), model_.entries().size()) << action_;
    if (round_ == round && text() != before) {
      ASSERT_GT(queue_.revision(), revision) << action_;
    }
    for (const StripQueue::EntryRef& entry : all)
      ASSERT_EQ(static_cast<FakeItem&>(*entry->item).isQueued, entry->isWaiting()) << action_;
  }

 private:
  std::uint64_t below(std::uint64_t end) { return random_() % end; }

  std::string text() const {
    std::string names;
    queue_.forEachInOrder(
        round_, [&](const StripQueue::EntryRef& entry) { names += nameOf(*entry->item) + " "; });
    return names;
  }

  void add(bool isArranged) {
    Known known;
    known.name = std::to_string(++made_);
    known.level = static_cast<double>(below(5)) - 2;
    if (isArranged) {
      known.rank = model_.nextRank++;
      known.entry = queue_.appendArranged(fake(known.name, 1), known.level);
    } else {
      known.entry = queue_.append(fake(known.name, 1), known.level);
    }
    model_.add(known);
  }

  // Shows the first entry, which then waits again, rests or has gone.
  void show() {
    StripQueue::EntryRef entry;
    queue_.forEachInOrder(round_, [&](const StripQueue::EntryRef& next) {
      if (!entry)
        entry = next;
    });
    Known known = model_.take(entry);
    queue_.take(entry);
    ++entry->showings;
    known.round = entry->round = round_;
    if (below(4) == 0) {
      queue_.settle(*entry);
      return;
    }
    queue_.putAgain(entry);
    model_.putAgain(known);
    queue_.settle(*entry);
    if (below(4) == 0) {
      const double time = static_cast<double>(below(20));
      queue_.rest(entry, time);
      model_.rest(model_.take(entry), time);
    }
  }

  void act(const std::vector<StripQueue::EntryRef>& all) {
    if (all.size() < 5) {
      action_ = "add";
      return add(below(2) == 0);
    }
    const StripQueue::EntryRef entry = all[below(all.size())];
    switch (below(all.size() > 30 ? 9 : 14)) {
    case 0:
    case 1:
      action_ = "show";
      return show();
    case 2:
      action_ = "take";
      model_.take(entry);
      queue_.take(entry);
      return queue_.settle(*entry);
    case 3: {
      action_ = "replace";
      Known& known = *Model::find(model_.lineOf(entry), entry);
      known.name = std::to_string(++made_);
      known.entry = queue_.replace(entry, fake(known.name, 1));
      return;
    }
    case 4:
    case 5: {
      action_ = "move";
      const StripQueue::EntryRef before = below(6) == 0 ? nullptr : all[below(all.size())];
      EXPECT_EQ(queue_.move(entry, before), model_.move(entry, before));
      return;
    }
    case 6: {
      action_ = "arrange";
      std::vector<StripQueue::EntryRef> order = all;
      std::shuffle(order.begin(), order.end(), random_);
      order.resize(below(order.size()) + 1);
      queue_.arrange(order);
      return model_.arrange(order);
    }
    case 7:
      action_ = "next round";
      ++round_;
      return;
    case 8:
      action_ = "wake";
      if (!model_.resting.empty()) {
        model_.returned.push_back(model_.resting.front());
        model_.resting.erase(model_.resting.begin());
        queue_.wakeFirst();
      }
      return;
    default:
      action_ = "add";
      return add(below(2) == 0);
    }
  }

  std::mt19937 random_;
  StripQueue queue_;
  Model model_;
  std::uint64_t round_ = 1;
  int made_ = 0;
  const char* action_ = "";
};

} // namespace

TEST(StripQueueWalk, AgreesWithAQueueOfVectors) {
  for (unsigned seed = 1; seed <= 12; ++seed) {
    Walk walk(seed);
    for (int i = 0; i < 1000; ++i) {
      ASSERT_NO_FATAL_FAILURE(walk.step()) << "seed " << seed << ", step " << i;
    }
  }
}
