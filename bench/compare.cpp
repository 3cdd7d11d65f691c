// SPDX-License-Identifier: MIT
// compare [--rounds N] [--library FILE]... [--only NAME]... DECK...
//     times the contenders on each deck in alternation, so that a slow spell of the machine
//     falls on all alike. One line a deck and contender: deck, contender, bytes, characters,
//     hash of all calls, median and shortest processor time in seconds, median of the rounds'
//     ratios to the floor. "-" in place of the figures: it cannot read such a deck.
// compare --passes N --only NAME DECK
//     N passes and no clock, for a profiler.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <ctime>

#include "contender.h"

namespace {

struct Entrant {
  const Contender *contender;
  Tally tally;
  std::vector<double> seconds;  // a round each; empty: cannot read the document
};

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const size_t half = values.size() / 2;
  return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2;
}

uint64_t HashOf(const Tally &tally) {
  return (tally.sumOfSums * 0x9E3779B97F4A7C15u) ^ tally.sum ^ tally.events;
}

// Time of this process alone: other processes disturb it less than time on the wall.
double ProcessorSeconds() {
  timespec now;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// Seconds of one pass, negative when the document cannot be read.
double TimePass(const Document &document, Entrant *entrant) {
  entrant->tally = {};
  const double start = ProcessorSeconds();
  const bool good = entrant->contender->pass(document, &entrant->tally);
  const double taken = ProcessorSeconds() - start;
  return good ? taken : -1;
}

void RunRounds(const Document &document, int rounds, std::vector<Entrant> *entrants) {
  std::vector<Entrant *> running;
  for (Entrant &entrant : *entrants) {  // to warm up
    if (TimePass(document, &entrant) >= 0) running.push_back(&entrant);
  }
  for (int round = 0; round < rounds; ++round) {
    for (Entrant *entrant : running) {
      const uint64_t before = HashOf(entrant->tally);
      entrant->seconds.push_back(TimePass(document, entrant));
      if (HashOf(entrant->tally) != before) {
        throw std::runtime_error(entrant->contender->name + " does not repeat itself");
      }
    }
  }
}

std::vector<double> RatiosTo(const std::vector<double> &base, const std::vector<double> &seconds) {
  std::vector<double> ratios;
  for (size_t i = 0; i < std::min(base.size(), seconds.size()); ++i) {
    ratios.push_back(seconds[i] / base[i]);
  }
  return ratios;
}

void PrintResults(const Document &document, const std::vector<Entrant> &entrants) {
  std::vector<double> base;
  for (const Entrant &entrant : entrants) {
    if (entrant.contender->name == kFloor) base = entrant.seconds;
  }
  for (const Entrant &entrant : entrants) {
    std::printf("%s\t%s\t", document.name.c_str(), entrant.contender->name.c_str());
    if (entrant.seconds.empty()) {
      std::printf("-\n");
      continue;
    }
    std::printf("%zu\t%llu\t%016llx\t%.9f\t%.9f\t%.4f\n", document.bytes.size(),
                static_cast<unsigned long long>(entrant.tally.characters),
                static_cast<unsigned long long>(HashOf(entrant.tally)), Median(entrant.seconds),
                *std::min_element(entrant.seconds.begin(), entrant.seconds.end()),
                base.empty() ? 0 : Median(RatiosTo(base, entrant.seconds)));
  }
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char **argv) try {
  CLI::App app("Times the filter, its floor and other parsers on the same decks");
  int rounds = 9;
  int passes = -1;
  std::vector<std::string> libraries, only, paths;
  app.add_option("--rounds", rounds, "rounds; medians are printed")->check(CLI::Range(1, 1000));
  app.add_option("--passes", passes, "so many passes instead, without a clock");
  app.add_option("--library", libraries, "another build of the filter to compare with")
      ->allow_extra_args(false);
  app.add_option("--only", only, "only the contender of that name")->allow_extra_args(false);
  app.add_option("deck", paths, "files to read")->required();
  CLI11_PARSE(app, argc, argv);

  const std::vector<Contender> contenders = AllContenders(libraries);
  for (const std::string &path : paths) {
    const Document document = LoadDocument(path);
    std::vector<Entrant> entrants;
    for (const Contender &contender : contenders) {
      if (only.empty() || std::find(only.begin(), only.end(), contender.name) != only.end()) {
        entrants.push_back({&contender, {}, {}});
      }
    }
    if (entrants.empty()) throw std::runtime_error("no contender has that name");
    if (passes < 0) {
      RunRounds(document, rounds, &entrants);
      PrintResults(document, entrants);
      continue;
    }
    for (Entrant &entrant : entrants) {
      for (int pass = 0; pass < passes; ++pass) {
        if (TimePass(document, &entrant) < 0) return 3;
      }
    }
  }
  return 0;
} catch (const std::exception &error) {
  std::fprintf(stderr, "compare: %s\n", error.what());
  return 2;
}
