// Model, fits and description, put together.
#include "serdesctl/twin/twin.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <vector>

#include "serdesctl/formats/json_object.h"
#include "serdesctl/twin/description.h"
#include "serdesctl/twin/port_fits.h"
#include "serdesctl/twin/switch_model.h"

namespace serdesctl {
namespace {

// To a hundredth: more is not known.
double rounded(double value) {
  return std::round(value * 100) / 100;
}

TwinLink linkOf(const ModelAsic& asic, const ModelPort& port, const PortFit& fit, std::size_t link) {
  TwinLink result;
  result.asic = asic.number;
  result.port = port.config->port;
  result.userPort = port.config->userPort;
  result.link = static_cast<std::uint32_t>(link);
  result.farEnd = farEndName(fit.farEnd);
  result.medium = mediumRow(fit.medium).name;
  result.unit = mediumRow(fit.medium).unit;
  result.length = rounded(fit.length);
  result.note = fit.note;
  if (fit.channel) {
    result.shortest = rounded(fit.channel->shortest);
    result.longest = rounded(fit.channel->longest);
    result.residual = rounded(fit.channel->residual);
  }
  if (port.seen[link]) {
    result.h1 = port.seen[link]->taps[0];
    result.ap = port.seen[link]->ap;
    result.amin = port.seen[link]->amin;
  }
  if (link < fit.shown.size() && fit.shown[link]) {
    result.h1Twin = rounded(fit.shown[link]->taps[0]);
    result.apTwin = rounded(fit.shown[link]->ap);
    result.aminTwin = rounded(fit.shown[link]->amin);
  }
  return result;
}

using Cells = std::array<std::string, 10>;

std::string number(const std::optional<double>& value, int digits) {
  if (!value) return "-";
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%.*f", digits, *value);
  return text.data();
}

Cells cellsOf(const TwinLink& link) {
  const std::string range = link.shortest ? number(link.shortest, 1) + "-" + number(link.longest, 1) : std::string("-");
  return {std::to_string(link.asic),
          std::to_string(link.port),
          std::to_string(link.link),
          link.farEnd,
          link.medium,
          (link.residual ? "" : "~") + number(link.length, 1) + " " + link.unit,
          range,
          number(link.residual, 2),
          link.amin ? number(link.amin, 0) + " " + number(link.aminTwin, 1) : "-",
          link.note};
}

}  // namespace

Twin makeTwin(const SwitchState& state, const std::string& origin) {
  const SwitchModel model = modelOf(state);
  const auto fits = fitPorts(model);
  Twin twin;
  for (std::size_t asic = 0; asic < model.asics.size(); ++asic) {
    for (std::size_t port = 0; port < model.asics[asic].ports.size(); ++port) {
      const ModelPort& modelled = model.asics[asic].ports[port];
      for (std::size_t link = 0; link < modelled.rx.size(); ++link)
        twin.links.push_back(linkOf(model.asics[asic], modelled, fits[asic][port], link));
    }
  }
  Description description = descriptionOf(state, model, fits, origin);
  twin.description = std::move(description.text);
  twin.notes = std::move(description.notes);
  return twin;
}

std::string jsonReport(const Twin& twin, const Origin& origin) {
  Json report = envelope("twin", "", origin.target, origin.time, std::nullopt);
  report["notes"] = twin.notes;
  report["records"] = objects(twin.links);
  return jsonLine(report);
}

std::string textReport(const Twin& twin) {
  std::vector<Cells> rows = {
      {"ASIC", "PORT", "LINK", "HEARS", "MEDIUM", "LENGTH", "AS WELL", "STEPS OFF", "AMIN, TWIN'S", "NOTE"}};
  for (const TwinLink& link : twin.links)
    rows.push_back(cellsOf(link));
  std::array<std::size_t, std::tuple_size_v<Cells>> widths{};
  for (const Cells& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i)
      widths[i] = std::max(widths[i], row[i].size());
  }
  std::string text;
  for (const Cells& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i)
      line += row[i] + std::string(widths[i] - row[i].size() + 2, ' ');
    text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
  }
  for (const std::string& note : twin.notes)
    text += "Not said by the twin: " + note + "\n";
  return text;
}

}  // namespace serdesctl
