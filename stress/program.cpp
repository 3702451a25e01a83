#include "program.h"

#include <algorithm>
#include <map>
#include <random>
#include <sstream>

namespace stress
{
namespace
{
using Words = std::vector<std::string>;

/// What an operand of that letter may be.
const Words& wordsOf(char letter)
{
    static const std::map<char, std::string> texts{
        {'o', "a b c d e f"},   // objects
        {'O', "a b c d e f -"}, // or nobody
        {'c', "actor lead shifter"},
        {'e', "said told shifted destroyed childAdded childRemoved changed"},
        {'r', "said told shifted"}, // to raise
        {'k', "callable array function scoped member leadmember descriptor"},
        {'w', "typed byindex byname"},
        {'f', "all ofevent ofmember ofdescriptor anymember anydescriptor"},
        {'v', "nothing number cargo"},
        {'y', "nothing number text"}, // that an event carries
        {'d', "received sent"},
        {'s', "0 1 2 3 4 5"}, // scripts
        {'h', "0 1 2 3"},     // holders
        {'p', "0 1 2"},       // properties
        {'n', "0 1 2 3 4 5 6 7"}};
    static const std::map<char, Words> words = [] {
        std::map<char, Words> split;
        for (const auto& [key, text] : texts) {
            std::istringstream stream(text);
            for (std::string word; stream >> word;)
                split[key].push_back(word);
        }
        return split;
    }();
    return words.at(letter);
}

/// -1 when the word is no such operand.
int operandOf(char letter, const std::string& word)
{
    const Words& words = wordsOf(letter);
    auto found = std::find(words.begin(), words.end(), word);
    return found == words.end() ? -1 : int(found - words.begin());
}

const Rule* ruleOf(std::string_view name)
{
    for (const Rule& rule : rules())
        if (rule.name == name)
            return &rule;
    return nullptr;
}

class Generator
{
public:
    Generator(unsigned int seed, std::size_t profile) : m_random(seed)
    {
        std::vector<int> weights;
        for (const Rule& rule : rules())
            weights.push_back(rule.weights[profile]);
        m_rules = std::discrete_distribution<std::size_t>(weights.begin(), weights.end());
        m_isRaising = ruleOf("raise")->weights[profile] > 0;
        m_isShifting = ruleOf("shift")->weights[profile] > 0;
    }

    Program program()
    {
        Program made;
        int objects = below(objectCount - 2) + 2;
        for (int i = 0; i < objects; ++i) {
            int parent = below(2) ? nobody : below(objects);
            made.scripts[0].push_back(
                {ruleOf("new"),
                 {i, parent < i ? parent : nobody, below(scriptCount), operand('c')}});
        }
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
            Operation made{&rules()[m_rules(m_random)]};
            for (std::size_t k = 0; k < made.rule->shape.size(); ++k)
                made.operands[k] = operand(made.rule->shape[k]);
            script.push_back(made);
        }
    }
    // Few different objects and holders, so that what happens meets; no more than every second
    // value does more than being there.
    int operand(char letter)
    {
        if (letter == 'o' || letter == 'h') {
            int count = letter == 'o' ? objectCount : holderCount;
            return std::min(below(count), below(count));
        }
        if (letter == 'O')
            return below(4) ? operand('o') : nobody;
        if (letter == 's')
            return below(2) ? below(scriptCount) : 0;
        if (letter == 'e')
            return m_isRaising && below(m_isShifting ? 4 : 2) ? operand('r') : 3 + below(4);
        if (letter == 'c' || letter == 'r')
            return m_isShifting && below(3) ? 2 : below(2);
        return below(int(wordsOf(letter).size()));
    }

    std::mt19937 m_random;
    std::discrete_distribution<std::size_t> m_rules;
    bool m_isRaising = false;  ///< also events of the host's own
    bool m_isShifting = false; ///< mostly those of a class that comes and goes
};
} // namespace

std::size_t Program::size() const
{
    std::size_t sum = 0;
    for (const Script& script : scripts)
        sum += script.size();
    return sum;
}

bool isName(char letter) { return letter == 'o' || letter == 'h' || letter == 'e'; }

Program makeProgram(unsigned int seed, std::size_t profile)
{
    return Generator(seed, profile).program();
}

std::string textOf(const Program& program)
{
    std::string text;
    for (std::size_t i = 0; i < scriptCount; ++i) {
        std::string line;
        for (const auto& [rule, operands] : program.scripts[i]) {
            line += (line.empty() ? " " : "; ") + std::string(rule->name);
            for (std::size_t k = 0; k < rule->shape.size(); ++k)
                line += " " + wordsOf(rule->shape[k])[std::size_t(operands[k])];
        }
        if (!line.empty())
            text += (i ? std::to_string(i) : "main") + ":" + line + "\n";
    }
    return text;
}

namespace
{
std::optional<Operation> operationOf(const std::string& text)
{
    std::istringstream words(text);
    std::string word;
    words >> word;
    Operation operation{ruleOf(word)};
    if (!operation.rule)
        return std::nullopt;
    for (std::size_t k = 0; k < operation.rule->shape.size(); ++k) {
        words >> word;
        operation.operands[k] = words ? operandOf(operation.rule->shape[k], word) : -1;
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
