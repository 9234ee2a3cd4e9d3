#include "cli/documents/manual_pages.h"

#include <algorithm>
#include <sstream>

#include "cli/documents/command_texts.h"
#include "cli/exit_status.h"
#include "cli/transform_options.h"

namespace tintora::cli {

namespace {

struct ExitStatus {
  int status;
  const char* meaning;
};
constexpr ExitStatus exitStatuses[] = {
    {exitDone, "Done."},
    {exitFailed, "Something failed, such as reading or writing a file."},
    {exitUsage, "The command line is wrong."},
    {exitFindings, "There are findings (check only)."},
};

// Escapes text that is typed as it stands: a plain hyphen would come out as a typographic one.
std::string typed(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '-') {
      escaped += "\\-";
    } else if (c == '\'') {
      escaped += "\\(aq";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

// Joins words into lines of a width that readers of the source like. No line begins with a control
// character of man(7).
std::string inLines(const std::vector<std::string>& words) {
  constexpr std::size_t width = 72;
  std::string text;
  std::size_t lineStart = 0;
  for (const std::string& word : words) {
    const bool isControl = word.front() == '.' || word.front() == '\'';
    if (!text.empty() && !isControl && text.size() - lineStart + 1 + word.size() > width) {
      text += '\n';
      lineStart = text.size();
    } else if (!text.empty()) {
      text += ' ';
    }
    text += word;
  }
  return text;
}

// Returns running text after other words; what begins with a hyphen is an option.
std::string prose(std::string_view text, std::vector<std::string> words = {}) {
  std::istringstream stream{std::string(text)};
  for (std::string word; stream >> word;) words.push_back(word.front() == '-' ? typed(word) : word);
  return inLines(words);
}

char upperCase(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

char lowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string bold(std::string_view text) {
  return "\\fB" + typed(text) + "\\fR";
}

std::string italic(std::string_view text) {
  return "\\fI" + typed(text) + "\\fR";
}

std::string sentence(std::string text) {
  text.front() = upperCase(text.front());
  return prose(text) + (text.ends_with('.') ? "" : ".");
}

std::string pageName(std::string_view command) {
  return "tintora-cli-" + std::string(command);
}

void appendHeading(std::string& page, const DeclaredCommand& command, std::string_view name) {
  std::string upper(name);
  std::ranges::transform(upper, upper.begin(), &upperCase);
  std::string purpose = command.description;
  purpose.front() = lowerCase(purpose.front());
  page += ".TH " + typed(upper) + " 1 \"\" \"Tintora " TINTORA_VERSION "\" \"User Commands\"\n";
  page += ".SH NAME\n" + prose(purpose, {typed(name), "\\-"}) + '\n';
}

void appendParagraphs(std::string& page, const CommandText& text) {
  page += ".SH DESCRIPTION\n";
  for (const std::string_view paragraph : text.paragraphs) {
    if (paragraph != text.paragraphs.front()) page += ".PP\n";
    page += prose(paragraph) + '\n';
  }
}

void appendOption(std::string& page, const DeclaredOption& option) {
  std::string names;
  for (const std::string& name : option.names) {
    const bool isDashed = name.front() == '-';
    names += (names.empty() ? "" : ", ") + (isDashed ? bold(name) : italic(name));
    if (isDashed && !option.value.empty()) names += ' ' + italic(option.value);
  }
  page += ".TP\n" + names + '\n';
  // A word that is typed keeps its small letter.
  const std::string first = option.description.substr(0, option.description.find_first_of(" ,"));
  const bool beginsWithWord = std::ranges::find(option.words, first) != option.words.end();
  page += beginsWithWord ? prose(option.description) + '.' : sentence(option.description);
  page += '\n';
  if (option.required) page += "Required.\n";
  if (option.words.empty()) return;
  std::vector<std::string> words{"One of"};
  for (const std::string& word : option.words) {
    words.push_back(bold(word) + (word == option.words.back() ? "." : ","));
  }
  page += inLines(words) + '\n';
}

void appendOptions(std::string& page, std::string_view heading,
                   const std::vector<DeclaredOption>& options) {
  if (options.empty()) return;
  page.append(".SH ").append(heading) += '\n';
  for (const DeclaredOption& option : options) appendOption(page, option);
}

template <typename Names>
void appendNames(std::string& page, std::string_view heading, const Names& names) {
  page.append(".SH ").append(heading) += '\n';
  for (const auto& entry : names) {
    page += ".TP\n" + bold(entry.name) + '\n' + sentence(std::string(entry.description)) + '\n';
  }
}

void appendEnd(std::string& page, const CommandText& text) {
  page += ".SH EXIT STATUS\n";
  for (const ExitStatus& status : exitStatuses) {
    page += ".TP\n" + std::to_string(status.status) + '\n' + status.meaning + '\n';
  }
  page += ".PP\nIn each case of failure one line on standard error says what.\n.SH EXAMPLES\n";
  for (const Example& example : text.examples) {
    requireAccepted(example.line);
    page += ".TP\n" + bold(example.line) + '\n' + sentence(std::string(example.meaning)) + '\n';
  }
  page += ".SH SEE ALSO\n";
}

std::string reference(std::string_view page, bool isLast) {
  return ".BR " + typed(page) + " (1)" + (isLast ? "\n" : ",\n");
}

ManualPage toolPage(const DeclaredTool& tool) {
  const CommandText& text = textOf(tool.tool.name);
  std::string page;
  appendHeading(page, tool.tool, tool.tool.name);
  page += ".SH SYNOPSIS\n" + bold(tool.tool.name) + " [\\fIOPTION\\fR ...] \\fICOMMAND\\fR ...\n";
  appendParagraphs(page, text);
  page += ".SH COMMANDS\n";
  for (const DeclaredCommand& command : tool.commands) {
    page += ".TP\n" + bold(command.name) + '\n' + sentence(command.description) + '\n';
  }
  appendOptions(page, "OPTIONS", tool.tool.options);
  appendNames(page, "MODES", modeNames());
  appendNames(page, "SIMULATION ALGORITHMS", algorithmNames());
  appendEnd(page, text);
  for (const DeclaredCommand& command : tool.commands) {
    page += reference(pageName(command.name), false);
  }
  page += reference("tintora", true);
  return {tool.tool.name, page};
}

ManualPage commandPage(const DeclaredCommand& command) {
  const CommandText& text = textOf(command.name);
  const std::string name = pageName(command.name);
  std::string page;
  appendHeading(page, command, name);
  page +=
      ".SH SYNOPSIS\n" + bold("tintora-cli") + ' ' + bold(command.name) + " [\\fIOPTION\\fR ...]";
  for (const DeclaredOption& argument : command.arguments) {
    page += ' ' + std::string(argument.required ? "" : "[") + italic(argument.value) + " ..." +
            (argument.required ? "" : "]");
  }
  page += '\n';
  appendParagraphs(page, text);
  appendOptions(page, "ARGUMENTS", command.arguments);
  appendOptions(page, "OPTIONS", command.options);
  appendEnd(page, text);
  page += reference("tintora-cli", true);
  return {name, page};
}

}  // namespace

std::vector<ManualPage> manualPages(const DeclaredTool& tool) {
  std::vector<ManualPage> pages{toolPage(tool)};
  for (const DeclaredCommand& command : tool.commands) pages.push_back(commandPage(command));
  return pages;
}

}  // namespace tintora::cli
