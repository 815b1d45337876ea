#include <iostream>
#include <map>
#include <optional>

#include "batch/effects.h"
#include "cli/context.h"
#include "config/settings.h"
#include "process/effects_word.h"

namespace pxm::cli {
namespace {

struct EffectArgs {
  std::vector<std::string> files;
  std::string effect;
  std::optional<uint32_t> palette;
  std::string method;
  std::optional<uint32_t> block;
  std::string word;
};

const std::map<std::string, uint32_t> kEffects = {
    {"reduce", kEffectReduce},   {"grey", kEffectGrey},           {"sharpen", kEffectSharpen},
    {"soften", kEffectSoften},   {"smudge", kEffectSmudge},       {"posterize", kEffectPosterize},
    {"promote", kEffectPromote}};
const std::map<std::string, uint32_t> kMethods = {
    {"remap", kMapRemap}, {"floyd", kMapFloyd}, {"burkes", kMapBurkes}, {"stucki", kMapStucki}};
const std::map<uint32_t, uint32_t> kBlocks = {{2, kBlock2}, {4, kBlock4}, {8, kBlock8}, {16, kBlock16}};

// A number as the dialog's word is written: decimal, or hexadecimal after "0x".
std::optional<uint32_t> ParseWord(const std::string& text) {
  const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
  const std::string digits = hex ? text.substr(2) : text;
  if (digits.empty() || digits.size() > (hex ? 8u : 10u)) return std::nullopt;
  uint64_t value = 0;
  for (char ch : digits) {
    int d;
    if (ch >= '0' && ch <= '9') d = ch - '0';
    else if (hex && ch >= 'a' && ch <= 'f') d = ch - 'a' + 10;
    else if (hex && ch >= 'A' && ch <= 'F') d = ch - 'A' + 10;
    else return std::nullopt;
    value = value * (hex ? 16 : 10) + static_cast<uint64_t>(d);
  }
  if (value > UINT32_MAX) return std::nullopt;
  return static_cast<uint32_t>(value);
}

// The effects word the dialog would produce for these options; nothing (after a message) when
// they do not fit together.
std::optional<uint32_t> WordOf(const EffectArgs& a) {
  if (!a.word.empty()) {
    if (!a.effect.empty() || a.palette || !a.method.empty() || a.block) {
      std::cerr << "pxm: --word stands alone: it already holds the effect and its options\n";
      return std::nullopt;
    }
    auto word = ParseWord(a.word);
    if (!word) std::cerr << "pxm: --word " << a.word << ": not a decimal or 0x number\n";
    return word;
  }
  if (a.effect.empty()) {
    std::cerr << "pxm: --effect or --word is required\n";
    return std::nullopt;
  }
  const uint32_t effect = kEffects.at(a.effect);
  if (a.palette && effect != kEffectReduce && effect != kEffectGrey) {
    std::cerr << "pxm: --palette applies to reduce and grey only\n";
    return std::nullopt;
  }
  if (!a.method.empty() && effect != kEffectReduce) {
    std::cerr << "pxm: --method applies to reduce only\n";
    return std::nullopt;
  }
  if (a.block && effect != kEffectPosterize) {
    std::cerr << "pxm: --block applies to posterize only\n";
    return std::nullopt;
  }
  if (effect == kEffectPosterize) return effect | kBlocks.at(a.block.value_or(2));
  if (effect == kEffectGrey) return EffectsWord(effect, a.palette.value_or(kPaletteQuantized256));
  if (effect == kEffectReduce)
    return EffectsWord(effect, a.palette.value_or(kPaletteQuantized256),
                       a.method.empty() ? kMapRemap : kMethods.at(a.method));
  return effect;
}

}  // namespace

Command SetupEffect(CLI::App& parent, Context& ctx) {
  auto a = std::make_shared<EffectArgs>();
  Command c;
  c.app = parent.add_subcommand(
      "effect", "Apply one effect to each file and write it in the --to format");
  c.app->add_option("files", a->files, "Picture files")->required()->type_name("FILE");
  c.app->add_option("--effect", a->effect,
                    "reduce, grey, sharpen, soften, smudge, posterize or promote")
      ->check(CLI::IsMember({"reduce", "grey", "sharpen", "soften", "smudge", "posterize",
                             "promote"}));
  c.app->add_option("--palette", a->palette,
                    "Palette choice 1-11 for reduce and grey: 1 orthogonal 256, 2-8 quantized "
                    "256/128/64/32/16/8/4, 9 Bayer 8, 10 fixed 16, 11 quantized 240 + 16 "
                    "(default 2)")
      ->check(CLI::Range(1, 11));
  c.app->add_option("--method", a->method, "remap, floyd, burkes or stucki (reduce; default remap)")
      ->check(CLI::IsMember({"remap", "floyd", "burkes", "stucki"}));
  c.app->add_option("--block", a->block, "Posterize block size 2, 4, 8 or 16 (default 2)")
      ->check(CLI::IsMember({2u, 4u, 8u, 16u}));
  c.app->add_option("--word", a->word, "The Effects dialog's raw word, decimal or 0x hex")
      ->type_name("N");
  c.run = [&ctx, a]() {
    auto word = WordOf(*a);
    if (!word) return kUsageError;
    int destRow = DestinationRow(ctx);
    if (destRow < 0) return kUsageError;
    if (*word == kEffectsCancelled) {
      std::cerr << "pxm: the word 65535 is the dialog's Cancel: nothing runs\n";
      return 4;
    }
    if (!ctx.options.output.empty()) {
      if (a->files.size() != 1) {
        std::cerr << "pxm: --output needs exactly one input file\n";
        return kUsageError;
      }
      CurrentSettings().PromptforDestName = 1;  // --output is the save dialog's answer
    }
    EffectsOptions options;
    options.destinationDirectory = ctx.options.destDir;
    return RunOverFiles(ctx, a->files, [&](Host& host, const std::string& path) {
      return Effects(host, path, destRow, *word, options);
    });
  };
  return c;
}

}  // namespace pxm::cli
