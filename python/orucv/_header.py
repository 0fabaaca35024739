"""Reads the library's C header: its structures, constants, functions and
tables, as plain data the binding turns into ctypes declarations.

The header is the one source of the binding, so a function declared there
is callable here without anything written for it by hand."""

import re
from typing import Dict, List, NamedTuple, Optional, Tuple


class CType(NamedTuple):
    base: str        # "int", "Oru8u", "OruSize", "void", ...
    pointers: int    # number of '*'
    const: bool      # the pointed-to (or plain) value is const

    def __str__(self):
        return ("const " if self.const else "") + self.base + "*" * self.pointers


class Param(NamedTuple):
    ctype: CType
    name: str


class Function(NamedTuple):
    name: str
    restype: CType
    params: Tuple[Param, ...]


class Table(NamedTuple):
    name: str
    ctype: CType
    dims: Tuple[int, ...]


class Header(NamedTuple):
    scalars: Dict[str, str]                          # typedef name -> C base type
    structs: Dict[str, Optional[List[Tuple[CType, str, Tuple[int, ...]]]]]  # None: opaque
    constants: Dict[str, int]
    functions: Dict[str, Function]
    tables: Dict[str, Table]


_COMMENTS = re.compile(r"/\*.*?\*/|//[^\n]*", re.S)
_PREPROCESSOR = re.compile(r"^\s*#.*?(?<!\\)$", re.M | re.S)


def _clean(text: str) -> str:
    text = _COMMENTS.sub(" ", text)
    text = _PREPROCESSOR.sub(" ", text)
    text = re.sub(r'extern\s+"C"\s*\{', " ", text)
    return text


def _ctype(tokens: str) -> CType:
    """A C type written without a name: 'const Oru8u*', 'unsigned int'."""
    pointers = tokens.count("*")
    words = tokens.replace("*", " ").split()
    const = "const" in words
    words = [w for w in words if w != "const"]
    if not words:
        raise ValueError("no type in %r" % tokens)
    return CType(" ".join(words), pointers, const)


def _declarator(text: str) -> Tuple[CType, str, Tuple[int, ...]]:
    """'const char* Name', 'char targetCpu[4]', 'Oru8u t[3][24]'."""
    text = " ".join(text.split())
    dims = tuple(int(d) for d in re.findall(r"\[\s*(\d+)\s*\]", text))
    text = re.sub(r"\[.*", "", text).strip()
    m = re.match(r"(.*?)([A-Za-z_]\w*)$", text)
    if not m:
        raise ValueError("cannot read the declaration %r" % text)
    return _ctype(m.group(1)), m.group(2), dims


def parse(text: str) -> Header:
    text = _clean(text)
    scalars: Dict[str, str] = {}
    structs: Dict[str, Optional[list]] = {}
    constants: Dict[str, int] = {}
    functions: Dict[str, Function] = {}
    tables: Dict[str, Table] = {}

    for m in re.finditer(r"typedef\s+struct\s+(\w+)\s*\{(.*?)\}\s*(\w+)\s*;", text, re.S):
        fields = [_declarator(f) for f in m.group(2).split(";") if f.strip()]
        structs[m.group(3)] = fields
    for m in re.finditer(r"typedef\s+struct\s+(\w+)\s+(\w+)\s*;", text):
        structs.setdefault(m.group(2), None)
    for m in re.finditer(r"typedef\s+([\w\s]+?)\s+(\w+)\s*;", text):
        if not m.group(1).startswith("struct"):
            scalars[m.group(2)] = " ".join(m.group(1).split())
    for m in re.finditer(r"\benum\s*\{(.*?)\}\s*;", text, re.S):
        for item in m.group(1).split(","):
            if item.strip():
                name, value = (s.strip() for s in item.split("="))
                constants[name] = int(value, 0)

    for m in re.finditer(r"\bORUCV_API\s+([^;]*?)\s*;", text, re.S):
        decl = " ".join(m.group(1).split())
        f = re.match(r"(.*?)\b([A-Za-z_]\w*)\s*\((.*)\)$", decl)
        if f:
            restype = _ctype(f.group(1))
            params = []
            if f.group(3).strip() != "void":
                for p in f.group(3).split(","):
                    ctype, name, dims = _declarator(p)
                    if dims:
                        raise ValueError("array parameter in %s" % f.group(2))
                    params.append(Param(ctype, name))
            functions[f.group(2)] = Function(f.group(2), restype, tuple(params))
        elif decl.startswith("extern "):
            ctype, name, dims = _declarator(decl[len("extern "):])
            tables[name] = Table(name, ctype, dims)
        else:
            raise ValueError("cannot read the declaration %r" % decl)
    return Header(scalars, structs, constants, functions, tables)
