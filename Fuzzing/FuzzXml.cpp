#include "Base/Text.h"
#include "Fuzzing/Expect.h"
#include "TamberlinKit/Markup/ExpatXML.h"

#include <string>
#include <utility>

using namespace Tamberlin;

namespace {

// All that is called back, text in one piece, and the reason of a refusal.
template <typename Parse> std::string eventsOf(Parse parse)
{
    std::string log;
    bool isInText = false;
    const auto mark = [&](const char* sign) {
        isInText = false;
        log += sign;
    };
    const std::function<void(const XMLName&, XMLAttributes)> onStart
        = [&](const XMLName& name, XMLAttributes given) {
              mark("\n<");
              log.append(name.written).append("|").append(name.local);
              for (const auto* const attribute : { "a", "w:a", "b", "val", "xmlns" }) {
                  for (const auto& value : { given.find(attribute), given.findLocal(attribute) })
                      log.append(" ").append(value.value_or("-"));
              }
          };
    const std::function<void(const XMLName&)> onEnd = [&](const XMLName& name) {
        mark("\n>");
        log.append(name.written).append("|").append(name.local);
    };
    const std::function<void(std::string_view)> onText = [&](std::string_view text) {
        expect(!text.empty(), "A piece of text is empty.");
        if (!std::exchange(isInText, true))
            log += "\n=";
        log += text;
    };
    const auto failure = parse(onStart, onEnd, onText);
    return log + "\n!" + failure.value_or("");
}

} // namespace

// Documents are read as the library reads them, whatever of them is read by ourselves.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const auto document = textOf(data, size);
    const XMLLimits limits { .deepest = 20, .elements = 200 };
    const auto ours = eventsOf([&](const auto& onStart, const auto& onEnd, const auto& onText) {
        return parseXML(document, limits, onStart, onEnd, onText);
    });
    const auto theirs = eventsOf([&](const auto& onStart, const auto& onEnd, const auto& onText) {
        return parseWithExpat(document, limits, { onStart, onEnd, onText }, {});
    });
    expect(ours == theirs, "A document is read differently.");
    return 0;
}
