// tslhost doctor
#include <algorithm>
#include <nlohmann/json.hpp>

#include "console/JsonOutput.h"
#include "console/Output.h"
#include "console/Text.h"
#include "console/WordWrap.h"
#include "tslhost/Commands.h"
#include "upkeep/doctor/Doctor.h"

namespace tsl {

namespace {

struct LevelLook {
    const char* name;
    Colour colour;
};

LevelLook LookOf(Level level) noexcept {
    switch (level) {
    case Level::Ok:
        return {"ok", Colour::Green};
    case Level::Warning:
        return {"warning", Colour::Yellow};
    default:
        return {"error", Colour::Red};
    }
}

class CFindingPrinter {
public:
    explicit CFindingPrinter(const Findings& findings) {
        for (const Finding& finding : findings)
            m_subjectWidth = std::max(m_subjectWidth, finding.subject.size());
    }

    // "ok       actionLog.txt  next id is 601", and what mends it on lines below.
    void Print(const Finding& finding) const {
        const LevelLook look = LookOf(finding.level);
        std::string start(kLevelWidth - std::string_view(look.name).size(), ' ');
        start += finding.subject;
        start.append(m_subjectWidth - finding.subject.size() + kGap, ' ');
        const std::vector<std::string> lines = WrapWords(Short(finding.text), Room());
        PrintLine(look.name, look.colour, lines.empty() ? start : start + lines.front());
        for (size_t index = 1; index < lines.size(); ++index)
            PrintIndented(lines[index]);
        if (finding.remedy.empty()) return;
        for (const std::string& line : WrapWords("mend: " + Short(finding.remedy), Room()))
            PrintIndented(line);
    }

private:
    static constexpr size_t kGap = 2;
    static constexpr size_t kLevelWidth = 7 + kGap;

    static std::string Short(const std::string& text) {
        return Abridged(OneLine(text), kLongestMessage);
    }
    void PrintIndented(const std::string& line) const {
        PrintLine(std::string(Indent(), ' ') + line);
    }
    size_t Indent() const { return kLevelWidth + m_subjectWidth + kGap; }
    size_t Room() const {
        constexpr size_t kLeastRoom = 20;
        return std::max(OutputWidth(), Indent() + kLeastRoom) - Indent();
    }

    size_t m_subjectWidth = 0;
};

void PrintJson(const Finding& finding) {
    const nlohmann::ordered_json object = {{"level", LookOf(finding.level).name},
                                           {"subject", finding.subject},
                                           {"text", finding.text},
                                           {"remedy", finding.remedy},
                                           {"damage", finding.damage}};
    PrintLine(ToJsonLine(object));
}

} // namespace

ExitCode RunDoctor(const CommandContext& context) {
    CProgress progress;
    progress.Show("examining the store");
    const Findings findings = Examine(MachineStore(), context.pluginPath);
    progress.Clear();
    const CFindingPrinter printer(findings);
    for (const Finding& finding : findings)
        context.json ? PrintJson(finding) : printer.Print(finding);
    return HasDamage(findings) ? ExitCode::Damaged : ExitCode::Fine;
}

} // namespace tsl
