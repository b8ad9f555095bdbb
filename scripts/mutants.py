"""The changes that mutation.py tries: what a mutant is, and where a C++ source allows one."""
import collections
import hashlib
import re
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent


class Mutant:
    """One change: the text between two offsets of a file, replaced."""

    def __init__(self, path, text, begin, end, replacement, kind):
        self.path, self.line = path, text.count("\n", 0, begin) + 1
        self.mutated_text = text[:begin] + replacement + text[end:]
        change = f"{kind}: {squeeze(text[begin:end])} -> {squeeze(replacement) or 'nothing'}"
        # The line's text identifies the place and does not change when other lines do.
        self.title = f"{path}: {change} | {squeeze(text.splitlines()[self.line - 1])}"

    def digest(self):
        return hashlib.sha256(f"{self.path}\n{self.mutated_text}".encode()).hexdigest()

    def __str__(self):
        return self.title.replace(":", f":{self.line}:", 1)


def squeeze(text):
    return " ".join(text.split())


def blank(match):
    return re.sub(r"[^\n]", " ", match.group(0))


STRING = r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])+\''


def code_only(text):
    """The text with everything blanked out that is not executed: comments, preprocessor lines except macro bodies, and
    function declarations. Offsets stay the same."""
    text = re.sub(STRING + r"|//[^\n]*", lambda found: blank(found) if found[0][0] == "/" else found[0], text)
    text = re.sub(r"^#(?!define)[^\n]*", blank, text, flags=re.M)
    return re.sub(r"^\w[^;{}=()]*\([^;{}]*\);|^.*= delete;", blank, text, flags=re.M)


def without_strings(code):
    return re.sub(STRING, blank, code)


def closing(code, opening):
    """The offset of the parenthesis that closes the one at `opening`."""
    depth = 0
    for offset in range(opening, len(code)):
        depth += {"(": 1, ")": -1}.get(code[offset], 0)
        if depth == 0:
            return offset
    return None


def arguments(code, opening, end):
    """The spans of the arguments of a call."""
    spans, depth, begin = [], 0, opening + 1
    for offset in range(opening + 1, end):
        depth += {"(": 1, "{": 1, "[": 1, ")": -1, "}": -1, "]": -1}.get(code[offset], 0)
        if code[offset] == "," and depth == 0:
            spans.append((begin, offset))
            begin = offset + 1
    spans.append((begin, end))
    return spans


def constant_mutants(code, bare):
    for match in re.finditer(r'"((?:\\.|[^"\\])*)"', code):
        changed = '""' if len(match.group(1)) == 1 else f'"{match.group(1)}X"'
        yield match.start(), match.end(), changed, "text"
    for match in re.finditer(r"'((?:\\.|[^'\\])+)'", code):
        yield match.start(), match.end(), "'~'", "character"
    for match in re.finditer(r"(?<![\w.])\d+(?![\w.])", bare):
        yield match.start(), match.end(), str(int(match.group(0)) + 1), "off by one"
        if match.group(0) != "0":
            yield match.start(), match.end(), str(int(match.group(0)) - 1), "off by one"
    for match in re.finditer(r"\b(true|false)\b", bare):
        yield match.start(), match.end(), {"true": "false", "false": "true"}[match.group(0)], "constant"
    for match in re.finditer(r"\bO_\w+\b", bare):
        yield match.start(), match.end(), "0", "flag"


def operator_mutants(bare):
    swaps = {"==": "!=", "!=": "==", "<=": "<", ">=": ">", "&&": "||", "||": "&&", " < ": " <= ", " > ": " >= ",
             " + ": " - ", " - ": " + ", "+=": "=", " | ": " & "}
    for operator, replacement in swaps.items():
        for match in re.finditer(re.escape(operator), bare):
            yield match.start(), match.end(), replacement, "operator"
    for match in re.finditer(r"(?<=[(\s])!(?=[\w(])", bare):
        yield match.start(), match.end(), "", "negation"


def condition_mutants(code, bare):
    for match in re.finditer(r"\b(if|while)\s*\(", bare):
        opening = match.end() - 1
        end = closing(bare, opening)
        condition = code[opening + 1:end]
        yield opening + 1, end, f"!({condition})", "negated condition"
        yield opening + 1, end, "false", "dropped condition"
        if match.group(1) == "if":
            yield opening + 1, end, "true", "dropped condition"
    for match in re.finditer(r"\breturn\s+([^;]*(?:&&|\|\||==|!=|[<>]=?|!)[^;]*);", bare):
        yield match.start(1), match.end(1), f"!({code[match.start(1):match.end(1)]})", "negated result"
    for match in re.finditer(r"\?([^?:;]*(?:::[^?:;]*)*):(?!:)([^;,)]*)", bare):
        first, second = code[match.start(1):match.end(1)], code[match.start(2):match.end(2)]
        yield match.start(1), match.end(2), f"{second} :{first} ", "swapped alternatives"


def statement_mutants(bare):
    for match in re.finditer(r"(?<=[;{})])(\s*)([A-Za-z_:][^;{}]*;)", bare):
        statement = match.group(2)
        if re.match(r"(return|using|namespace|constexpr|const|struct|class|static_assert|extern|else|case|default|public|private)\b",
                    statement):
            continue
        yield match.start(2), match.end(2), ";", "dropped statement"


def is_parameter(text):
    return re.fullmatch(r"(?:[\w:<>,]+[&*]* )+\w+(?: = .*)?", text)


def argument_mutants(code, bare):
    for match in re.finditer(r"\b([A-Za-z_]\w*)\(", bare):
        if match.group(1) in ("if", "while", "for", "switch", "return", "sizeof"):
            continue
        end = closing(bare, match.end() - 1)
        if end is None:
            continue
        spans = arguments(bare, match.end() - 1, end)
        if re.match(r"[\s\w=]*;", bare[end + 1:]) and all(is_parameter(code[b:e].strip()) for b, e in spans):
            continue  # a declaration: its parameters' names have no effect
        for (b1, e1), (b2, e2) in zip(spans, spans[1:]):
            first, second = code[b1:e1].strip(), code[b2:e2].strip()
            if first and second and first != second:
                yield b1, e2, f"{second}, {first}", "swapped arguments"


def mutants_of(path):
    text = (ROOT / path).read_text()
    code = code_only(text)
    bare = without_strings(code)
    found = [*constant_mutants(code, bare), *operator_mutants(bare), *condition_mutants(code, bare),
             *statement_mutants(bare), *argument_mutants(code, bare)]
    mutants = [Mutant(path, text, *change) for change in sorted(set(found))]
    number_equal_titles(mutants)
    return mutants


def number_equal_titles(mutants):
    seen = collections.Counter()
    for mutant in mutants:
        seen[mutant.title] += 1
        if seen[mutant.title] > 1:
            mutant.title += f" ({seen[mutant.title]})"
