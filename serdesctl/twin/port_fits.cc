// Candidates for a port's far end, each with the length that fits it best; the neighbours' crosstalk by what is known
// of them so far.
#include "serdesctl/twin/port_fits.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <limits>
#include <span>
#include <utility>

#include "simulator/description/line_rates.h"
#include "simulator/link/crosstalk.h"

namespace serdesctl {
namespace {

using simulator::Aggressor;
using simulator::speedBit;
using simulator::Transmitter;

// Below it a receiver hears nothing.
constexpr double kLeastSignal = 5;
// A residual that is more than counting in whole steps explains.
constexpr double kPoor = 1;

using AsicFits = std::vector<PortFit>;

Medium mediumOf(const ModelPort& port) {
  switch (port.media) {
    case MEDIA_OPTICAL:
    case MEDIA_10G_ETHERNET:
    case MEDIA_1G_ETHERNET:
      return Medium::kOptical;
    case MEDIA_COPPER_PASSIVE:  // active copper has the same name, and is read as this
      return Medium::kCopper;
    default:
      return Medium::kBoard;
  }
}

// Media that a port may have, the likeliest first: what it reports may be the plug's word for a board.
std::vector<Medium> mediaOf(const ModelPort& port) {
  const Medium likeliest = mediumOf(port);
  if (likeliest == Medium::kBoard) return {likeliest};
  return {likeliest, Medium::kBoard};
}

bool sendsOnto(const ModelPort& port, std::size_t link) {
  return link < port.tx.size() && port.media != MEDIA_NONE &&
         port.txTraits().tx.read(port.tx[link], simulator::Field::kTxEnable) != 0;
}

Transmitter transmitterAt(const ModelPort& port, std::size_t link) {
  return simulator::transmitterOf(port.txTraits(), port.tx[link]);
}

Transmitter transmitterOfPartner(const ModelPort& port, const SerDesTxRateParams& settings) {
  return simulator::transmitterOf(port.txTraits(), registersAfter(port.txTraits(), settings));
}

// Links of a port hardly ever differ. A port that has none is taken to be like one after a reset.
SerDesTxRateParams ownSettings(const ModelPort& port) {
  return settingsIn(port.txTraits(), port.tx.empty() ? port.txTraits().tx.resetValues() : port.tx.front());
}

// What a port hears, if anything: transmitter and baud.
std::optional<std::pair<Transmitter, double>> heardBy(const ModelPort& port, const PortFit& fit, std::size_t link) {
  if (fit.farEnd == FarEnd::kPartner) {
    return std::pair(transmitterOfPartner(port, fit.partner), port.baud(fit.speed, port.rx.size()));
  }
  if (fit.farEnd == FarEnd::kNothing || !sendsOnto(port, link)) return std::nullopt;
  return std::pair(transmitterAt(port, link), port.baud(fit.speed, port.tx.size()));
}

// The transmitters that disturb a receive link, as the simulated switch has them: those of the ports beside it, and
// of what these hear.
std::vector<Aggressor> aggressorsOf(const ModelAsic& asic, const AsicFits& fits, std::size_t port, std::size_t link) {
  std::vector<Aggressor> aggressors;
  const auto add = [&](std::size_t neighbour, unsigned distance) {
    const ModelPort& other = asic.ports[neighbour];
    const std::size_t sending = std::min(link, std::max<std::size_t>(other.tx.size(), 1) - 1);
    if (sendsOnto(other, sending)) {
      aggressors.push_back({.transmitter = transmitterAt(other, sending),
                            .baudGbd = other.baud(fits[neighbour].speed, other.tx.size()),
                            .distance = distance,
                            .farEnd = false});
    }
    if (other.rx.empty() || other.media == MEDIA_NONE) return;
    if (const auto heard = heardBy(other, fits[neighbour], std::min(link, other.rx.size() - 1))) {
      aggressors.push_back(
          {.transmitter = heard->first, .baudGbd = heard->second, .distance = distance, .farEnd = true});
    }
  };
  for (unsigned distance = 1; distance <= simulator::kFarthestNeighbour; ++distance) {
    if (port >= distance) add(port - distance, distance);
    if (port + distance < asic.ports.size()) add(port + distance, distance);
  }
  return aggressors;
}

// What a far end may send, and with which settings.
struct Candidate {
  Transmitter transmitter;
  SerDesTxRateParams settings;
};

struct Choice {
  Candidate far;
  ChannelFit channel;
};

// Tries far ends for one port at one speed.
class PortSearch {
 public:
  PortSearch(const ModelAsic& asic, const AsicFits& fits, std::size_t port, std::uint32_t speed)
      : port_(asic.ports[port]), media_(mediaOf(port_)) {
    for (std::size_t link = 0; link < port_.rx.size(); ++link) {
      if (!port_.seen[link]) continue;
      simulator::Receiver receiver = simulator::receiverOf(port_.rxTraits(), port_.rx[link]);
      receiver.evenOddMismatch = 0;
      links_.push_back({.receiver = receiver,
                        .baudGbd = port_.baud(speed, port_.rx.size()),
                        .aggressors = aggressorsOf(asic, fits, port, link),
                        .seen = *port_.seen[link]});
    }
  }

  std::span<const FitLink> links() const {
    return links_;
  }

  // A medium other than the likeliest has to fit clearly better.
  Choice tried(const Candidate& far) {
    std::optional<ChannelFit> best;
    for (const Medium medium : media_) {
      const ChannelFit fit = fitChannel(links_, far.transmitter, medium, smallest_);
      if (!best || !isHardlyWorse(best->residual, fit.residual)) best = fit;
    }
    smallest_ = std::min(smallest_, best->residual);
    return {far, *best};
  }

  // Of a signal that the gain does not bring to what it should read, the drive is not known either.
  bool isWeak() const {
    return std::all_of(links_.begin(), links_.end(),
                       [](const FitLink& link) { return link.seen.ap < link.receiver.amax - 1; });
  }

  // The port's own FFE at another drive.
  Choice weakened(const Candidate& own) {
    std::optional<Choice> best;
    const bool ethernet = port_.txTraits().isEthernet;
    for (int power = ethernet ? simulator::kMaxDriveLevel : 255; power > 0; power -= ethernet ? 1 : power / 12 + 1) {
      Candidate far = own;
      far.settings.power = power;
      far.transmitter = transmitterOfPartner(port_, far.settings);
      const Choice choice = tried(far);
      if (!best || choice.channel.residual < best->channel.residual) best = choice;
    }
    return *best;
  }

 private:
  const ModelPort& port_;
  std::vector<Medium> media_;
  std::vector<FitLink> links_;
  double smallest_ = std::numeric_limits<double>::infinity();  // residual so far
};

std::string number(double value) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%.1f", value);
  return text.data();
}

class SwitchFit {
 public:
  explicit SwitchFit(const SwitchModel& model) : model_(model) {
    for (const ModelAsic& asic : model.asics) {
      AsicFits& fits = fits_.emplace_back();
      for (const ModelPort& port : asic.ports)
        fits.push_back(assumed(port));
    }
    collectSettings();
  }

  // Twice: the second time with what the first has found of the neighbours.
  std::vector<AsicFits> run() {
    for (int pass = 0; pass < 2; ++pass) {
      const std::vector<AsicFits> known = fits_;
      for (std::size_t asic = 0; asic < model_.asics.size(); ++asic) {
        for (std::size_t port = 0; port < model_.asics[asic].ports.size(); ++port) {
          if (pass == 0 || neighboursChanged(known[asic], port)) fitPort(asic, known[asic], port);
        }
      }
    }
    return fits_;
  }

 private:
  // Before anything is fitted: ports hear themselves.
  static PortFit assumed(const ModelPort& port) {
    PortFit fit;
    const bool hidden = port.speed() == SPEED_AUTO && !port.sends && port.media != MEDIA_NONE;
    fit.speed = hidden ? speedByCaches(port) : port.speed();
    fit.medium = mediumOf(port);
    fit.length = mediumRow(fit.medium).typical;
    const bool silent = fit.speed == SPEED_AUTO && port.sends;
    fit.farEnd = port.media == MEDIA_NONE || silent ? FarEnd::kNothing : FarEnd::kItself;
    return fit;
  }

  // A port that would find its speed if it sent: the one whose caches are in force.
  static std::uint32_t speedByCaches(const ModelPort& port) {
    std::uint32_t highest = SPEED_AUTO;
    for (std::uint32_t speed = SPEED_20G; speed > SPEED_AUTO; --speed) {
      if ((port.speeds & speedBit(speed)) == 0) continue;
      highest = std::max(highest, speed);
      const LinkRegisters start = startOf(port, speed);
      const bool tx = port.tx.empty() || sameTxSettings(port.txTraits(), start.tx, port.tx.front());
      const bool rx = port.rx.empty() || sameRxSettings(port.rxTraits(), start.rx, port.rx.front());
      if (tx && rx) return speed;
    }
    return highest;
  }

  // What transmitters of the switch are set to: a far end may be set so too.
  void collectSettings() {
    for (const ModelAsic& asic : model_.asics) {
      for (const ModelPort& port : asic.ports) {
        if (!port.tx.empty()) (port.txTraits().isEthernet ? ethernetSettings_ : settings_).push_back(ownSettings(port));
      }
    }
  }

  static bool neighboursChanged(const AsicFits& fits, std::size_t port) {
    for (std::size_t other = 0; other < fits.size(); ++other) {
      const std::size_t distance = other > port ? other - port : port - other;
      if (distance == 0 || distance > simulator::kFarthestNeighbour) continue;
      if (fits[other].channel && fits[other].farEnd != FarEnd::kItself) return true;
    }
    return false;
  }

  std::vector<Candidate> candidatesFor(const ModelPort& port) const {
    std::vector<Candidate> candidates;
    const auto add = [&](const Transmitter& transmitter, const SerDesTxRateParams& settings) {
      const bool known = std::any_of(candidates.begin(), candidates.end(),
                                     [&](const Candidate& other) { return other.transmitter == transmitter; });
      if (!known) candidates.push_back({transmitter, settings});
    };
    if (!port.tx.empty()) add(transmitterAt(port, 0), ownSettings(port));
    for (const SerDesTxRateParams& settings : port.txTraits().isEthernet ? ethernetSettings_ : settings_)
      add(transmitterOfPartner(port, settings), settings);
    if (candidates.empty()) add(transmitterOfPartner(port, ownSettings(port)), ownSettings(port));
    return candidates;
  }

  void fitPort(std::size_t asicIndex, const AsicFits& known, std::size_t index) {
    const ModelAsic& asic = model_.asics[asicIndex];
    const ModelPort& port = asic.ports[index];
    PortFit& fit = fits_[asicIndex][index];
    fit = assumed(port);
    const bool shows =
        std::any_of(port.seen.begin(), port.seen.end(), [](const auto& seen) { return seen.has_value(); });
    if (!shows || port.media == MEDIA_NONE) return;
    const bool hears = std::any_of(port.seen.begin(), port.seen.end(),
                                   [](const auto& seen) { return seen && std::fabs(seen->ap) >= kLeastSignal; });
    if (!hears) {
      // Where nothing is sent nothing need be wrong with the line.
      if (port.sends) fit.farEnd = FarEnd::kNothing;
      return;
    }
    if (isOutOfPace(port)) return fitOutOfPace(port, fit);
    hear(asic, known, index, fit);
  }

  // A level and nothing else: what arrives comes at another speed.
  static bool isOutOfPace(const ModelPort& port) {
    for (std::size_t link = 0; link < port.rx.size(); ++link) {
      const unsigned taps = simulator::receiverOf(port.rxTraits(), port.rx[link]).dfeTaps;
      const auto& seen = port.seen[link];
      if (!seen || taps == 0 || seen->amin != 0) return false;
      if (std::any_of(seen->taps.begin(), seen->taps.end(), [](double tap) { return tap != 0; })) return false;
    }
    return true;
  }

  static void fitOutOfPace(const ModelPort& port, PortFit& fit) {
    fit.farEnd = FarEnd::kPartner;
    fit.partner = ownSettings(port);
    for (const std::uint32_t speed : {SPEED_10G, SPEED_8G, SPEED_20G}) {
      if (speed != port.speed()) fit.partnerSpeed = speed;
    }
    fit.note = "what arrives comes at another speed: the line is not known";
  }

  // Ports on AUTO that do not run listen at their lowest speed, or at one that is not shown while they send nothing.
  static std::vector<std::uint32_t> speedsOf(const ModelPort& port) {
    if (port.speed() != SPEED_AUTO || port.sends) return {port.speed()};
    std::vector<std::uint32_t> speeds;
    for (std::uint32_t speed = SPEED_20G; speed > SPEED_AUTO; --speed)
      if ((port.speeds & speedBit(speed)) != 0) speeds.push_back(speed);
    return speeds;
  }

  void hear(const ModelAsic& asic, const AsicFits& known, std::size_t index, PortFit& fit) {
    const ModelPort& port = asic.ports[index];
    std::optional<PortFit> best;
    for (const std::uint32_t speed : speedsOf(port)) {
      PortFit tried = fit;
      tried.speed = speed;
      PortSearch search(asic, known, index, speed);
      chooseFarEnd(port, search, tried);
      if (!best || !isHardlyWorse(best->channel->residual, tried.channel->residual)) best = tried;
    }
    fit = *best;
  }

  void chooseFarEnd(const ModelPort& port, PortSearch& search, PortFit& fit) const {
    const std::vector<Candidate> candidates = candidatesFor(port);
    std::vector<Choice> choices;
    std::transform(candidates.begin(), candidates.end(), std::back_inserter(choices),
                   [&](const Candidate& far) { return search.tried(far); });
    const auto better = [](const Choice& a, const Choice& b) { return a.channel.residual < b.channel.residual; };
    Choice best = *std::min_element(choices.begin(), choices.end(), better);
    if (best.channel.residual > kPoor && search.isWeak()) {
      choices.push_back(search.weakened(candidates.front()));
      best = std::min(choices.back(), best, better);
    }
    const bool likeItself = isHardlyWorse(choices.front().channel.residual, best.channel.residual);
    if (likeItself) best = choices.front();
    const bool itself = likeItself && !port.tx.empty() && port.sends && port.speed() != SPEED_AUTO;
    if (!itself) best.far.transmitter = transmitterOfPartner(port, best.far.settings);
    addRange(search.links(), best.far.transmitter, best.channel);
    take(port, best, itself, fit);
    addShown(search, best, port, fit);
    fit.note = noteOf(choices, best);
  }

  static void take(const ModelPort& port, const Choice& best, bool itself, PortFit& fit) {
    fit.channel = best.channel;
    fit.medium = best.channel.medium;
    fit.length = best.channel.length;
    fit.farEnd = itself ? FarEnd::kItself : FarEnd::kPartner;
    fit.partner = best.far.settings;
    if (!itself && fit.speed == SPEED_AUTO) fit.partnerSpeed = simulator::lowestSpeed(port.speeds);
  }

  static void addShown(const PortSearch& search, const Choice& best, const ModelPort& port, PortFit& fit) {
    const simulator::Channel channel = mediumRow(fit.medium).channel(fit.length);
    auto link = search.links().begin();
    for (const auto& seen : port.seen) {
      auto& shown = fit.shown.emplace_back();
      if (!seen) continue;
      shown = readingsOf(
          simulator::evaluateLink(best.far.transmitter, channel, link->receiver, link->baudGbd, link->aggressors));
      ++link;
    }
  }

  // Far ends that fit about as well may stand for another length.
  static std::string noteOf(const std::vector<Choice>& choices, const Choice& best) {
    double shortest = best.channel.length;
    double longest = best.channel.length;
    for (const Choice& other : choices) {
      const ChannelFit& fit = other.channel;
      if (fit.medium != best.channel.medium || !isHardlyWorse(fit.residual, best.channel.residual)) continue;
      shortest = std::min(shortest, fit.length);
      longest = std::max(longest, fit.length);
    }
    const char* unit = mediumRow(best.channel.medium).unit;
    if (best.channel.residual > kPoor) return "no far end that is known of fits well";
    if (shortest >= best.channel.shortest && longest <= best.channel.longest) return "";
    return "far ends that are set otherwise fit as well, on " + number(shortest) + " to " + number(longest) + " " +
           unit;
  }

  const SwitchModel& model_;
  std::vector<SerDesTxRateParams> settings_;
  std::vector<SerDesTxRateParams> ethernetSettings_;
  std::vector<AsicFits> fits_;
};

}  // namespace

std::vector<std::vector<PortFit>> fitPorts(const SwitchModel& model) {
  return SwitchFit(model).run();
}

}  // namespace serdesctl
