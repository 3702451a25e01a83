#include "program.h"

#include <algorithm>
#include <map>
#include <sstream>

namespace stress
{
namespace
{
struct Shape {
    std::string_view name;
    std::string_view shape;
};

// By `Code`. The operands "sssO" at the end of a line are the scripts that a value runs when it is
// destroyed, copied and compared, and the object that it holds by a strong reference.
constexpr Shape shapes[codeCount] = {
    {"new", "oOsc"},        // the object, its parent, what its member functions run
    {"delete", "o"},        //
    {"parent", "oO"},       //
    {"move", "ooc"},        // from, to
    {"assign", "oo"},       // to, from
    {"listen", "oOekshsO"}, // sender, receiver; what runs; the handle; what its capture runs, holds
    {"scope", "h"},         // the handle into the scoped one of that number
    {"end", "h"},           // by the handle
    {"drop", "h"},          // the scoped handle
    {"keep", "oh"},         // the scoped handle becomes a member of the object
    {"take", "oo"},         // the member of the first is assigned that of the second
    {"let", "o"},           // the member is assigned an empty one
    {"unsubscribe", "oOef"}, // sender, receiver
    {"raise", "orwnsssO"},   // with the value
    {"change", "v"},         // the array that events are raised with by index
    {"throw", ""},           //
    {"block", "hod"},        //
    {"unblock", "h"},        //
    {"weak", "hO"},          //
    {"strong", "hO"},        //
    {"set", "opvnsssO"},     // a dynamic property to the value
    {"get", "os"},           // a declared property, whose getter runs the script
    {"put", "os"},           // the same with the setter
    {"fail", "n"},           // memory, at the allocation of that number in the next operation
};

using Words = std::vector<std::string>;

/// The operands of that letter; empty for numbers.
const Words& wordsOf(char letter)
{
    static const Words none, objects{"a", "b", "c", "d", "e", "f"},
        objectsOrNobody{"a", "b", "c", "d", "e", "f", "-"},
        events{"said", "told", "destroyed", "childAdded", "childRemoved", "changed"},
        raised{"said", "told"},
        kinds{"callable", "array", "function", "scoped", "member", "leadmember", "descriptor"},
        ways{"typed", "byindex", "byname"}, values{"nothing", "number", "cargo"},
        forms{"all", "ofevent", "ofmember", "ofdescriptor"}, classes{"actor", "lead"},
        directions{"received", "sent"};
    static const std::map<char, const Words*> words{{'o', &objects}, {'O', &objectsOrNobody},
                                                    {'e', &events},  {'r', &raised},
                                                    {'k', &kinds},   {'w', &ways},
                                                    {'v', &values},  {'f', &forms},
                                                    {'c', &classes}, {'d', &directions}};
    auto found = words.find(letter);
    return found == words.end() ? none : *found->second;
}

/// How many values an operand of that letter has.
int rangeOf(char letter)
{
    switch (letter) {
    case 's':
        return scriptCount;
    case 'h':
        return holderCount;
    case 'p':
        return nameCount;
    case 'n':
        return 8;
    default:
        return int(wordsOf(letter).size());
    }
}

std::string operandText(char letter, int value)
{
    const Words& words = wordsOf(letter);
    return words.empty() ? std::to_string(value) : words[std::size_t(value)];
}

/// -1 when the word is no such operand.
int operandOf(char letter, const std::string& word)
{
    for (int value = 0; value < rangeOf(letter); ++value)
        if (operandText(letter, value) == word)
            return value;
    return -1;
}

class Generator
{
public:
    Generator(unsigned int seed, const Weights& weights)
        : m_random(seed),
          m_codes(weights.begin(), weights.end()),
          m_isRaising(weights[int(Code::Raise)] > 0)
    {}

    Program program()
    {
        Program made;
        int objects = below(objectCount - 2) + 2;
        for (int i = 0; i < objects; ++i)
            made.scripts[0].push_back(
                {Code::New, {i, i ? below(i + 2) : nobody, below(scriptCount)}});
        for (Operation& creation : made.scripts[0])
            if (creation.operands[1] >= objects || below(2))
                creation.operands[1] = nobody;
        fill(made.scripts[0], 6 + below(20));
        for (std::size_t i = 1; i < scriptCount; ++i)
            fill(made.scripts[i], below(5));
        return made;
    }

private:
    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(m_random); }

    void fill(Script& script, int count)
    {
        for (int i = 0; i < count; ++i) {
            Operation made{Code(m_codes(m_random)), {}};
            std::string_view shape = shapeOf(made.code);
            for (std::size_t k = 0; k < shape.size(); ++k)
                made.operands[k] = operand(shape[k]);
            script.push_back(made);
        }
    }
    // Few different objects, so that what happens meets; no more than every second value does more
    // than being there.
    int operand(char letter)
    {
        if (letter == 'o')
            return std::min(below(objectCount), below(objectCount));
        if (letter == 'O')
            return below(4) ? operand('o') : nobody;
        if (letter == 's')
            return below(2) ? below(scriptCount) : 0;
        if (letter == 'e')
            return m_isRaising && below(2) ? below(2) : 2 + below(4);
        return below(rangeOf(letter));
    }

    std::mt19937 m_random;
    std::discrete_distribution<int> m_codes;
    bool m_isRaising; ///< also events of the host's own
};
} // namespace

std::size_t Program::size() const
{
    std::size_t sum = 0;
    for (const Script& script : scripts)
        sum += script.size();
    return sum;
}

std::string_view shapeOf(Code code) { return shapes[int(code)].shape; }

bool isName(char letter) { return letter == 'o' || letter == 'h' || letter == 'e'; }

Program makeProgram(unsigned int seed, const Weights& weights)
{
    return Generator(seed, weights).program();
}

std::string textOf(const Program& program)
{
    std::string text;
    for (std::size_t i = 0; i < scriptCount; ++i) {
        std::string line;
        for (const Operation& operation : program.scripts[i]) {
            line += (line.empty() ? " " : "; ") + std::string(shapes[int(operation.code)].name);
            std::string_view shape = shapeOf(operation.code);
            for (std::size_t k = 0; k < shape.size(); ++k)
                line += " " + operandText(shape[k], operation.operands[k]);
        }
        if (!line.empty())
            text += (i ? std::to_string(i) : "main") + ":" + line + "\n";
    }
    return text;
}

std::optional<Code> codeOf(std::string_view name)
{
    for (int i = 0; i < codeCount; ++i)
        if (shapes[i].name == name)
            return Code(i);
    return std::nullopt;
}

namespace
{
std::optional<Operation> operationOf(const std::string& text)
{
    std::istringstream words(text);
    std::string word;
    words >> word;
    std::optional<Code> code = codeOf(word);
    if (!code)
        return std::nullopt;
    Operation operation{*code, {}};
    std::string_view shape = shapeOf(*code);
    for (std::size_t k = 0; k < shape.size(); ++k) {
        words >> word;
        operation.operands[k] = words ? operandOf(shape[k], word) : -1;
        if (operation.operands[k] < 0)
            return std::nullopt;
    }
    return operation;
}
} // namespace

std::optional<Program> programOf(const std::string& text)
{
    Program program;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::size_t colon = line.find(':');
        std::string title = line.substr(0, colon);
        int number = title == "main" ? 0 : operandOf('s', title);
        if (colon == std::string::npos || number < 0)
            return std::nullopt;
        std::istringstream parts(line.substr(colon + 1));
        for (std::string part; std::getline(parts, part, ';');) {
            std::optional<Operation> operation = operationOf(part);
            if (!operation)
                return std::nullopt;
            program.scripts[std::size_t(number)].push_back(*operation);
        }
    }
    return program;
}
} // namespace stress
