// The command line: strict option parsing, usage and help from a command's
// declaration, the command registry, timing and progress.
#include "cli.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace orucv_tool {
namespace {

std::vector<Command>& command_list() {
    static std::vector<Command> list;
    return list;
}
std::vector<DemoStep>& step_list() {
    static std::vector<DemoStep> list;
    return list;
}

int g_repeat = 1;

bool starts_with(const std::string& s, const char* prefix) { return s.compare(0, std::strlen(prefix), prefix) == 0; }

// The options a command accepts: its own, then the common groups.
std::vector<Option> all_options(const Command& c) {
    std::vector<Option> all = c.options;
    if (c.common & kRepeat)
        all.push_back({"--repeat", "N", "run the primitive N times; print the minimum and median time (default 1)"});
    if (c.common & (kReads8 & ~kReads))
        all.push_back({"--to8", "shift|scale",
                       "how 16-bit input becomes 8-bit: shift keeps the top 8 significant bits, scale maps maxval "
                       "to 255 (without it 16-bit input is refused)"});
    if (c.common & kReads) {
        all.push_back({"--drop-alpha", nullptr, "drop an alpha channel (without it an image with alpha is refused; alpha is never composited)"});
        all.push_back({"--max-pixels", "N",
                       "largest image read whole, in pixels (default 268435456); also sets the memory budget, 4 "
                       "bytes per pixel"});
    }
    return all;
}

const Option* find_option(const std::vector<Option>& options, const std::string& name) {
    for (const Option& o : options)
        if (name == o.name) return &o;
    return nullptr;
}

// "shift|scale" lists allowed values; "N" or "X,Y" names a value.
std::vector<std::string> choices(const Option& o) {
    std::vector<std::string> list;
    if (!o.value || !std::strchr(o.value, '|')) return list;
    std::string item;
    for (const char* p = o.value;; ++p) {
        if (*p == '|' || *p == 0) {
            list.push_back(item);
            item.clear();
            if (*p == 0) break;
        } else {
            item += *p;
        }
    }
    return list;
}

std::string join_choices(const std::vector<std::string>& list) {
    std::string s;
    for (size_t i = 0; i < list.size(); ++i) s += (i == 0 ? "" : i + 1 == list.size() ? " or " : ", ") + list[i];
    return s;
}

struct Positional {
    std::string name;
    bool optional = false, repeats = false;
};

std::vector<Positional> positionals(const Command& c) {
    std::vector<Positional> list;
    std::string word;
    const std::string synopsis = c.synopsis ? c.synopsis : "";
    for (size_t i = 0; i <= synopsis.size(); ++i) {
        if (i < synopsis.size() && synopsis[i] != ' ') {
            word += synopsis[i];
            continue;
        }
        if (word.empty()) continue;
        Positional p;
        p.optional = word.front() == '[';
        word.erase(std::remove(word.begin(), word.end(), '['), word.end());
        word.erase(std::remove(word.begin(), word.end(), ']'), word.end());
        if (word.size() > 3 && word.compare(word.size() - 3, 3, "...") == 0) {
            p.repeats = true;
            word.resize(word.size() - 3);
        }
        p.name = word;
        list.push_back(p);
        word.clear();
    }
    return list;
}

bool looks_negative_number(const std::string& a) {
    return a.size() > 1 && a[0] == '-' && (std::isdigit(static_cast<unsigned char>(a[1])) || a[1] == '.');
}

// Words after `lead`, continued on lines indented by `indent` columns.
std::string wrap(const std::string& lead, const std::vector<std::string>& words, size_t indent, size_t width = 79) {
    std::string out = lead;
    const size_t newline = lead.rfind('\n');
    size_t column = newline == std::string::npos ? lead.size() : lead.size() - newline - 1;
    bool first = true;
    for (const std::string& w : words) {
        if (!first && column + 1 + w.size() > width) {
            out += "\n" + std::string(indent, ' ');
            column = indent;
        } else if (!first) {
            out += ' ';
            ++column;
        }
        out += w;
        column += w.size();
        first = false;
    }
    return out;
}

std::vector<std::string> split_words(const std::string& text) {
    std::vector<std::string> words;
    std::string w;
    for (char c : text + " ") {
        if (c == ' ') {
            if (!w.empty()) words.push_back(w);
            w.clear();
        } else {
            w += c;
        }
    }
    return words;
}

std::string option_usage(const Option& o) {
    std::string s = o.name;
    if (o.value) s += std::string(" ") + o.value;
    return o.required ? s : "[" + s + "]";
}

}  // namespace

// ---- parsing ---------------------------------------------------------------

Args parse_args(const Command& command, int argc, const char* const* argv, bool* help) {
    *help = false;
    for (int i = 0; i < argc; ++i) {
        if (std::strcmp(argv[i], "--") == 0) break;
        if (std::strcmp(argv[i], "-h") == 0 || std::strcmp(argv[i], "--help") == 0) {
            *help = true;
            return Args();
        }
    }
    const std::vector<Option> options = all_options(command);
    Args args;
    args.command = &command;
    bool options_done = false;
    for (int i = 0; i < argc; ++i) {
        const std::string a = argv[i];
        if (!options_done && a == "--") {
            options_done = true;
            continue;
        }
        if (!options_done && starts_with(a, "--") && a.size() > 2) {
            const size_t eq = a.find('=');
            const std::string name = a.substr(0, eq);
            const Option* o = find_option(options, name);
            if (!o) throw UsageError("unknown option " + name);
            std::string value;
            if (!o->value) {
                if (eq != std::string::npos) throw UsageError("option " + name + " takes no value");
            } else if (o->value[0] == '[') {
                // An optional number: --name, --name=V or --name V.
                if (eq != std::string::npos) value = a.substr(eq + 1);
                else if (i + 1 < argc && std::strlen(argv[i + 1]) > 0 &&
                         std::strspn(argv[i + 1], "0123456789") == std::strlen(argv[i + 1]))
                    value = argv[++i];
            } else if (eq != std::string::npos) {
                value = a.substr(eq + 1);
            } else if (i + 1 < argc) {
                value = argv[++i];
            } else {
                throw UsageError("option " + name + " needs a value (" + o->value + ")");
            }
            if (args.has(name)) throw UsageError("option " + name + " is given twice");
            const std::vector<std::string> allowed = choices(*o);
            if (!allowed.empty() && std::find(allowed.begin(), allowed.end(), value) == allowed.end())
                throw UsageError("option " + name + " takes " + join_choices(allowed) + ", not '" + value + "'");
            args.options[name] = value;
            continue;
        }
        if (!options_done && a.size() > 1 && a[0] == '-' && !looks_negative_number(a))
            throw UsageError("unknown option " + a);
        args.positional.push_back(a);
    }

    const std::vector<Positional> names = positionals(command);
    size_t required = 0;
    bool unlimited = false;
    for (const Positional& p : names) {
        if (!p.optional) ++required;
        unlimited |= p.repeats;
    }
    if (args.positional.size() < required) {
        // The first missing required name.
        size_t seen = 0;
        for (const Positional& p : names)
            if (!p.optional && seen++ == args.positional.size()) throw UsageError("missing " + p.name);
        throw UsageError("missing arguments");
    }
    if (!unlimited && args.positional.size() > names.size())
        throw UsageError("unexpected argument '" + args.positional[names.size()] + "'");
    for (const Option& o : options)
        if (o.required && !args.has(o.name)) throw UsageError("option " + std::string(o.name) + " is required");

    // Outputs are checked before any work: a name the program cannot write
    // fails now, not after a long computation.
    for (size_t i = 0; i < args.positional.size() && !names.empty(); ++i) {
        const Positional& p = names[std::min(i, names.size() - 1)];
        if (starts_with(p.name, "OUT")) output_format(args.positional[i]);
    }
    for (const Option& o : options)
        if (o.value && starts_with(o.value, "OUT") && args.has(o.name)) output_format(args.get(o.name));
    return args;
}

std::string usage_line(const Command& command) {
    std::vector<std::string> words;
    if (command.synopsis && *command.synopsis) words.push_back(command.synopsis);
    for (const Option& o : all_options(command)) words.push_back(option_usage(o));
    const std::string lead = std::string("usage: orucv ") + command.name + " ";
    return wrap(lead, words, std::min<size_t>(lead.size(), 24));
}

std::string help_text(const Command& command) {
    std::string text = usage_line(command) + "\n\n" + command.summary + ".\n";
    if (command.details) text += "\n" + std::string(command.details) + "\n";
    const size_t column = 24;
    auto line = [&](const std::string& left, const std::string& help) {
        std::string lead = "  " + left;
        lead = lead.size() + 2 <= column ? lead + std::string(column - lead.size(), ' ')
                                         : lead + "\n" + std::string(column, ' ');
        return wrap(lead, split_words(help), column) + "\n";
    };
    text += "\noptions:\n";
    for (const Option& o : all_options(command))
        text += line(std::string(o.name) + (o.value ? std::string(" ") + o.value : ""),
                     std::string(o.help) + (o.required ? " (required)" : ""));
    text += line("-h, --help", "print this help");
    return text;
}

// ---- arguments -------------------------------------------------------------

std::string Args::get(const std::string& name, const std::string& fallback) const {
    auto it = options.find(name);
    return it == options.end() ? fallback : it->second;
}

int Args::get_int(const std::string& name, int fallback, int lo, int hi) const {
    if (!has(name)) return fallback;
    const std::string v = get(name);
    char* end = nullptr;
    errno = 0;
    const long long n = std::strtoll(v.c_str(), &end, 10);
    const bool ranged = lo != -(1 << 30) || hi != (1 << 30);
    if (v.empty() || *end || errno || n < lo || n > hi)
        throw ToolError(name + " needs a whole number" +
                        (ranged ? " from " + std::to_string(lo) + " to " + std::to_string(hi) : std::string()) +
                        ", not '" + v + "'");
    return static_cast<int>(n);
}

double Args::get_double(const std::string& name, double fallback, double lo, double hi) const {
    if (!has(name)) return fallback;
    const std::string v = get(name);
    char* end = nullptr;
    const double d = std::strtod(v.c_str(), &end);
    if (v.empty() || *end || !std::isfinite(d)) throw ToolError(name + " needs a number, not '" + v + "'");
    if (!(d >= lo && d <= hi)) {
        char range[96];
        if (lo > -1e300 && hi < 1e300)
            std::snprintf(range, sizeof range, " from %g to %g", lo, hi);
        else if (lo > -1e300)
            std::snprintf(range, sizeof range, " of at least %g", lo);
        else
            std::snprintf(range, sizeof range, " of at most %g", hi);
        throw ToolError(name + " needs a number" + range + ", not '" + v + "'");
    }
    return d;
}

std::pair<int, int> Args::get_pair(const std::string& name) const {
    const std::string v = get(name);
    int a = 0, b = 0;
    char tail = 0;
    if (std::sscanf(v.c_str(), "%d,%d%c", &a, &b, &tail) != 2) throw ToolError(name + " needs X,Y, not '" + v + "'");
    return {a, b};
}

std::pair<int, int> Args::get_size(const std::string& name) const {
    const std::string v = get(name);
    int w = 0, h = 0;
    char tail = 0;
    if (std::sscanf(v.c_str(), "%dx%d%c", &w, &h, &tail) != 2 || w < 1 || h < 1)
        throw ToolError(name + " needs WxH with positive sides, not '" + v + "'");
    return {w, h};
}

ReadOptions Args::input() const {
    ReadOptions o;
    if (has("--max-pixels")) {
        const std::string v = get("--max-pixels");
        char* end = nullptr;
        errno = 0;
        const unsigned long long n = std::strtoull(v.c_str(), &end, 10);
        if (v.empty() || v[0] == '-' || *end || errno || n < 1 || n > (1ull << 40))
            throw ToolError("--max-pixels needs a whole number from 1 to 2^40, not '" + v + "'");
        o.max_pixels = n;
    }
    o.drop_alpha = has("--drop-alpha");
    const std::string to8 = get("--to8");
    o.to8 = to8 == "shift" ? To8::Shift : to8 == "scale" ? To8::Scale : To8::Refuse;
    return o;
}

// ---- registry --------------------------------------------------------------

bool register_command(const Command& command) {
    command_list().push_back(command);
    return true;
}
bool register_demo_step(const DemoStep& step) {
    step_list().push_back(step);
    return true;
}
const std::vector<Command>& commands() {
    auto& list = command_list();
    // demo first, then by name.
    auto key = [](const Command& c) { return std::make_pair(std::strcmp(c.name, "demo") != 0, std::string(c.name)); };
    std::sort(list.begin(), list.end(), [&](const Command& a, const Command& b) { return key(a) < key(b); });
    return list;
}
const Command* find_command(const std::string& name) {
    for (const Command& c : commands())
        if (name == c.name) return &c;
    return nullptr;
}
std::vector<DemoStep> demo_steps() {
    std::vector<DemoStep> steps = step_list();
    std::stable_sort(steps.begin(), steps.end(), [](const DemoStep& a, const DemoStep& b) { return a.order < b.order; });
    return steps;
}

void check_status(int status, const char* function) {
    if (status < 0) throw ToolError(std::string(function) + " failed: " + describe_status(status));
}

// ---- timing and progress ---------------------------------------------------

int repeat_count() { return g_repeat; }
void set_repeat_count(int runs) { g_repeat = std::max(1, runs); }

double Timing::min_ms() const { return ms.empty() ? 0.0 : *std::min_element(ms.begin(), ms.end()); }

double Timing::median_ms() const {
    if (ms.empty()) return 0.0;
    std::vector<double> sorted = ms;
    std::sort(sorted.begin(), sorted.end());
    const size_t n = sorted.size();
    return n % 2 ? sorted[n / 2] : (sorted[n / 2 - 1] + sorted[n / 2]) / 2;
}

std::string Timing::text() const {
    char buf[96];
    if (ms.size() <= 1)
        std::snprintf(buf, sizeof buf, "%.3f ms", min_ms());
    else
        std::snprintf(buf, sizeof buf, "min %.3f ms, median %.3f ms of %zu runs", min_ms(), median_ms(), ms.size());
    return buf;
}

// ORUCV_PROGRESS_AFTER_MS changes the delay before the bar appears (the
// tests draw it at once).
Progress::Progress(std::string what, uint64_t total)
    : what_(std::move(what)), total_(total), terminal_(isatty(STDERR_FILENO) == 1),
      start_(std::chrono::steady_clock::now()), last_(start_) {
    const char* after = std::getenv("ORUCV_PROGRESS_AFTER_MS");
    delay_ = std::chrono::milliseconds(after ? std::atoi(after) : 1000);
}

Progress::~Progress() { finish(); }

void Progress::update(uint64_t done) {
    if (!terminal_ || total_ == 0) return;
    const auto now = std::chrono::steady_clock::now();
    if (now - start_ < delay_) return;
    if (drawn_ && now - last_ < std::chrono::milliseconds(100)) return;
    last_ = now;
    drawn_ = true;
    const double f = std::min(1.0, static_cast<double>(done) / static_cast<double>(total_));
    const int width = 30, filled = static_cast<int>(f * width);
    std::fprintf(stderr, "\r%s [%s%s] %3d%%", what_.c_str(), std::string(filled, '#').c_str(),
                 std::string(width - filled, '.').c_str(), static_cast<int>(f * 100));
    std::fflush(stderr);
}

void Progress::finish() {
    if (!drawn_) return;
    std::fprintf(stderr, "\r%s\r", std::string(what_.size() + 40, ' ').c_str());
    std::fflush(stderr);
    drawn_ = false;
}

}  // namespace orucv_tool
