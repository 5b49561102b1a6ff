// The frame of every command: global options, help, and exit codes.
//
//   mavrel-cli [OPTIONS] COMMAND ARGUMENTS

#include <algorithm>
#include <new>

#include "base/Format.h"
#include "base/Text.h"
#include "cli/Command.h"

namespace {

constexpr std::wstring_view kGlobalHelp =
    L"mavrel-cli [OPTIONS] COMMAND ARGUMENTS\n"
    L"\n"
    L"  --settings FILE                settings INI (default: mavrel-cli.ini beside the program)\n"
    L"  --plugins DIR                  codec plugins (default: plugins beside the program)\n"
    L"  --game auto|vc|sa              game of the database (default: from the settings)\n"
    L"  --stream auto|raw|framed       the same by the names of the stream modes\n"
    L"  --json                         one JSON document on standard output\n"
    L"  --yes, --no                    the answer to every question\n"
    L"  --progress auto|always|never   progress on standard error (auto: only on a terminal)\n"
    L"  --jobs N                       at most N worker threads for long work (default: all cores)\n"
    L"  --version, --help, COMMAND --help\n"
    L"\n"
    L"DB is the path of a TXT list. CACHE is dxt, etc, pvr or unc. TEXTURE and CATEGORY are a name or #N.\n"
    L"Exit codes: 0 done, 1 failed, 2 usage, 3 damage found and not mended, 4 a question was left "
    L"unanswered.\n";

const OptionNames kGlobalOptions = {
    .flags = {L"--json", L"--yes", L"--no", L"--version", L"--help"},
    .withValue = {L"--settings", L"--plugins", L"--game", L"--stream", L"--progress", L"--jobs"},
};

std::vector<Command> AllCommands()
{
    std::vector<Command> all;
    for (const auto group :
         {DatabaseCommands(), RepairCommands(), EditCommands(), PictureCommands(), RenderWareCommands(),
          ImgCommands(), OptimizeCommands(), ConvertCommands(), RadarCommands(), ProgramCommands()})
        all.insert(all.end(), group.begin(), group.end());
    return all;
}

// The value of an option that is one of a few words.
template <class Value>
Value ChoiceOf(const std::wstring& option, const std::wstring& word,
               std::initializer_list<std::pair<std::wstring_view, Value>> choices)
{
    for (const auto& [name, value] : choices)
        if (name == word)
            return value;
    throw CUsageError(Format(L"'%s' is not a value of %s.", word, option));
}

GlobalOptions ReadGlobalOptions(const CArguments& arguments)
{
    GlobalOptions options;
    if (const auto file = arguments.Value(L"--settings"))
        options.settings = ToPath(*file);
    if (const auto folder = arguments.Value(L"--plugins"))
        options.plugins = ToPath(*folder);
    if (const auto game = arguments.Value(L"--game"))
        options.game = ChoiceOf<StreamMode>(
            L"--game", *game,
            {{L"auto", StreamMode::Auto}, {L"vc", StreamMode::Raw}, {L"sa", StreamMode::Framed}});
    if (const auto mode = arguments.Value(L"--stream"))
        options.game = ChoiceOf<StreamMode>(
            L"--stream", *mode,
            {{L"auto", StreamMode::Auto}, {L"raw", StreamMode::Raw}, {L"framed", StreamMode::Framed}});
    if (arguments.Has(L"--yes") && arguments.Has(L"--no"))
        throw CUsageError(L"--yes and --no exclude each other.");
    if (arguments.Has(L"--yes"))
        options.answer = PromptAnswer::Yes;
    if (arguments.Has(L"--no"))
        options.answer = PromptAnswer::No;
    options.json = arguments.Has(L"--json");
    if (const auto progress = arguments.Value(L"--progress"))
        options.progress = ChoiceOf<std::optional<bool>>(
            L"--progress", *progress, {{L"auto", std::nullopt}, {L"always", true}, {L"never", false}});
    if (const auto jobs = arguments.Value(L"--jobs")) {
        const auto number = ParseIndex(*jobs);
        if (!number || *number == 0)
            throw CUsageError(L"--jobs needs a number from 1 on.");
        options.jobs = *number;
    }
    return options;
}

std::wstring HelpOf(const Command& command)
{
    return Format(L"mavrel-cli %s %s\n\n%s\n", command.name, command.syntax, command.help);
}

std::wstring FullHelp()
{
    std::wstring text(kGlobalHelp);
    text += L"\nCommands:\n";
    for (const Command& command : AllCommands())
        text += Format(L"  %s %s\n", command.name, command.syntax);
    return text;
}

ExitCode RunCommand(const Command& command, const CArguments& arguments)
{
    const std::size_t words = arguments.Words().size();
    if (words < command.fewestWords || words > command.mostWords)
        throw CUsageError(Format(L"Usage: mavrel-cli %s %s", command.name, command.syntax));
    CSession session(ReadGlobalOptions(arguments));
    try {
        const ExitCode code = command.run(session, arguments);
        return session.Prompt().Unanswered().empty() ? code : ExitCode::QuestionUnanswered;
    } catch (const CError& error) {
        if (!error.WasShown())
            WriteMessage(error.Text());
        return session.Prompt().Unanswered().empty() ? ExitCode::Failed : ExitCode::QuestionUnanswered;
    }
}

// The first word that is not an option of its own: the command. Options with a value may stand before it.
std::optional<std::size_t> FindCommandWord(const std::vector<std::wstring>& words)
{
    const auto& withValue = kGlobalOptions.withValue;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (std::find(withValue.begin(), withValue.end(), words[i]) != withValue.end())
            ++i;
        else if (!words[i].starts_with(L"--"))
            return i;
    }
    return std::nullopt;
}

OptionNames Joined(OptionNames options, const OptionNames& more)
{
    options.flags.insert(options.flags.end(), more.flags.begin(), more.flags.end());
    options.withValue.insert(options.withValue.end(), more.withValue.begin(), more.withValue.end());
    return options;
}

ExitCode RunWithoutCommand(const std::vector<std::wstring>& words)
{
    const CArguments arguments(words, kGlobalOptions);
    if (arguments.Has(L"--version")) {
        WriteOutput(Format(L"mavrel-cli 0.7b build #%02d\n", BuildNumber()));
        return ExitCode::Done;
    }
    if (arguments.Has(L"--help")) {
        WriteOutput(FullHelp());
        return ExitCode::Done;
    }
    throw CUsageError(FullHelp());
}

ExitCode Dispatch(std::vector<std::wstring> words)
{
    const auto at = FindCommandWord(words);
    if (!at)
        return RunWithoutCommand(words);
    const std::wstring name = words[*at];
    words.erase(words.begin() + static_cast<std::ptrdiff_t>(*at));
    for (const Command& command : AllCommands()) {
        if (command.name != name)
            continue;
        const CArguments arguments(words, Joined(command.options, kGlobalOptions));
        if (arguments.Has(L"--help")) {
            WriteOutput(HelpOf(command));
            return ExitCode::Done;
        }
        return RunCommand(command, arguments);
    }
    throw CUsageError(Format(L"There is no command '%s'. mavrel-cli --help lists them.", name));
}

}  // namespace

ExitCode RunCommandLine(const std::vector<std::wstring>& words)
{
    try {
        return Dispatch(words);
    } catch (const CUsageError& error) {
        WriteMessage(error.Text());
        return ExitCode::Usage;
    } catch (const std::bad_alloc&) {
        WriteMessage(L"There is not enough memory.");
        return ExitCode::Failed;
    } catch (const std::exception& error) {
        WriteMessage(FromUtf8(error.what()));
        return ExitCode::Failed;
    }
}
