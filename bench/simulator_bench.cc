// How long the simulated switch takes to work out its links: all 96 of a full switch from nothing, those that a
// change of one port reaches, and one link's eye. Run it with: cmake --build build --target simulator_bench &&
// build/simulator/simulator_bench
//
// The floor is work that the model's definition asks of every implementation: the medium's exponential and phasor at
// each bin of the spectrum that it passes, and the error rate over the sign patterns of the largest residuals. No
// transform, filter, sampling or noise is in it. It uses the same elementary functions, which give the same bits
// everywhere; a C library's would be faster.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "simulator/link/model.h"
#include "simulator/switch/switch.h"

namespace {

using namespace simulator;

constexpr unsigned kPorts = 24;
constexpr unsigned kLinks = kPorts * kMaxLinks;
constexpr int kRounds = 50;

std::string fullSwitch() {
  std::string text = "[settings.lane]\nffe = \"FFE3\"\ntaps = [-2, 56, -8, 0]\ndfe = \"DFE5\"\n";
  std::string ports;
  for (unsigned port = 0; port < kPorts; ++port) {
    const std::string number = std::to_string(port);
    text += "[channels.line" + number + "]\nfr4_inches = " + std::to_string(10 + port) + "\nconnectors = 2\n";
    ports += "[[asics.ports]]\nports = " + number + "\nchannel = \"line" + number + "\"\n";
  }
  return text +
         "[[asics]]\n[[asics.cores]]\ncores = \"0-11\"\ntype = 3\n[[asics.ports]]\nports = \"0-23\"\nkind = \"XG\"\n"
         "core = 0\nports_per_core = 2\nfar_end = \"loop\"\nspeed = \"20G\"\ncache = \"lane\"\n" +
         ports;
}

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "simulator_bench: %s\n", what);
  std::exit(1);
}

// Reads what each link shows; a link that does not run would be too easy.
void readAll(Switch& sw) {
  for (unsigned port = 0; port < kPorts; ++port) {
    for (unsigned link = 0; link < kMaxLinks; ++link) {
      SerDesRxDFEStats stats;
      require(sw.getRxDfeStats(0, port, static_cast<int>(link), &stats) == kOk && stats.Ap > 10, "a link is down");
    }
  }
}

void scanEye(Switch& sw) {
  for (int phase = -32; phase < 32; ++phase) {
    for (int level = -64; level < 64; level += 2) {
      const int mode = static_cast<int>(kMarginPoint) + 256 * phase + level;
      int status = 0;
      require(sw.setTestOption(0, 7, 0, kTestMargin, mode) == kOk, "a set fails");
      require(sw.getTestStatus(0, 7, 0, kTestMargin, &status) == kOk, "a get fails");
    }
  }
}

template <typename Work>
double milliseconds(Work work) {
  const auto begun = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begun).count();
}

// Kept from being left out by the compiler.
volatile double sink;

void floorOfLink(const Channel& channel, const Transmitter& transmitter, double baud) {
  constexpr unsigned kBins = kSamplesPerUi * kPulseUi / 2 + 1;
  constexpr double kDeafNepers = 12;  // where the evaluation stops too
  const LossFit loss(channel);
  const double step = baud / kPulseUi;
  const double edge = slewNepers(transmitter.slewPs, step);
  double sum = 0;
  for (unsigned k = 0; k < kBins; ++k) {
    const double f = k * step;
    const double nepers = loss.db(f, 0.5) / kNeperDb + edge * k * k;
    if (nepers > kDeafNepers) continue;
    sum += exponential(-nepers) * unitPhasor(-loss.a2 * f).re;
  }
  constexpr double kResiduals[] = {0.09, 0.05, -0.04, 0.03, 0.02, -0.02, 0.01, 0.01};
  sink = sum + LevelDistribution(0.4, kResiduals, 0.02, 0.03).below(0, 11).probability;
}

struct Times {
  std::vector<double> values;
  double least() const {
    return *std::min_element(values.begin(), values.end());
  }
  double median() {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
  }
};

void print(const char* what, Times& times, unsigned links) {
  std::printf("%-34s %8.3f ms least, %8.3f ms median", what, times.least(), times.median());
  if (links > 0) std::printf(", %6.1f us a link", times.least() * 1000 / links);
  std::printf("\n");
}

}  // namespace

int main() {
  const std::string text = fullSwitch();
  const SwitchDescription description = readDescription(text, "full.toml");
  Times start, all, again, one, eye, floor;
  for (int round = 0; round < kRounds; ++round) {
    start.values.push_back(milliseconds([&] {
      const Switch sw(readDescription(text, "full.toml"));
      require(sw.evaluations() == 0, "starting works a link out");
    }));
    Switch sw(description);
    all.values.push_back(milliseconds([&] { readAll(sw); }));
    require(sw.evaluations() == kLinks, "not each link is worked out once");
    again.values.push_back(milliseconds([&] { readAll(sw); }));
    require(sw.evaluations() == kLinks, "a link is worked out again without a change");
    require(sw.setTxFfe(0, 7, kAllLinks, {.mode = FFE_2, .k = 115, .c = {0, 57, -7, 0}}) == kOk, "a set fails");
    one.values.push_back(milliseconds([&] { readAll(sw); }));
    require(sw.evaluations() == kLinks + 5 * kMaxLinks, "not the port that changed and two beside it are worked out");
    eye.values.push_back(milliseconds([&] { scanEye(sw); }));
    floor.values.push_back(milliseconds([&] {
      for (const PortDescription& port : description.asics[0].ports) {
        for (unsigned link = 0; link < kMaxLinks; ++link)
          floorOfLink(port.channel, {}, 21.0375 / kMaxLinks);
      }
    }));
  }
  std::printf("%u links, %d rounds, one core\n", kLinks, kRounds);
  print("description and start", start, 0);
  print("all links from nothing", all, kLinks);
  print("all links, nothing changed", again, kLinks);
  print("all links, one port changed", one, 0);
  print("eye of a link, 64 x 64 points", eye, 0);
  print("floor of all links", floor, kLinks);
  std::printf("all links from nothing is %.2f times the floor (least), the target is 10 ms\n",
              all.least() / floor.least());
  return 0;
}
