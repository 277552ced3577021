// serdesctl plan: what would be done, and nothing is.
#include <unistd.h>

#include <string>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/files.h"
#include "serdesctl/base/output.h"
#include "serdesctl/plan/plan_json.h"
#include "serdesctl/subcommands/changing.h"
#include "serdesctl/subcommands/plan_text.h"

namespace serdesctl {
namespace {

std::string scriptText(const Plan& plan) {
  std::string text;
  for (const std::string& line : scriptOf(plan.steps))
    text += line + "\n";
  return text;
}

KeptPlan kept(const Wish& wish, const Save& now) {
  return {.origin = now.origin,
          .source = wish.source,
          .topology = topologyOf(now.state),
          .throughCache = wish.throughCache,
          .wanted = wish.wanted,
          .steps = wish.plan.steps,
          .impossible = wish.plan.impossible};
}

std::string chosenReport(const PlanOptions& options, const Wish& wish, const Save& now) {
  if (options.script) return scriptText(wish.plan);
  if (options.json) return jsonLine(planJson(kept(wish, now), false));
  return planReport(wish.plan, now.state);
}

}  // namespace

int performPlan(const Options& options) {
  requireWritable(options.plan.output);
  OpenedSwitch opened(options.common);
  const Wish wish = readWish(options.plan.file, opened.now.state, options.plan.throughCache);
  std::string lastWords;
  (void)opened.tool.close(lastWords);
  Output output(STDOUT_FILENO);
  output.write(chosenReport(options.plan, wish, opened.now));
  output.flush();
  if (options.plan.script && !wish.plan.impossible.empty()) complain(impossibleText(wish.plan));
  if (!options.plan.output.empty()) {
    writeFileWhole(options.plan.output, readableJson(planJson(kept(wish, opened.now), true)));
  }
  return wish.plan.steps.empty() && wish.plan.impossible.empty() ? kDone : kFailed;
}

}  // namespace serdesctl
