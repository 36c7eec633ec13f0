#!/usr/bin/env python3
"""Reads models and writes the header that ties each attribute's descriptor to the accessors of its class by name.

The contract suite walks descriptors. A descriptor does not name the functions of the class, and a class does not list its
handlers, so this script, which shares nothing with the compiler of the models, spells them once more:

  Accessors<X::AAttr>  the accessors of attribute a, under the same names for every attribute of a kind
  Recorder<X>          a notifiee of X that notes every handler that is called
  EnumAccess<E>, FieldAccess<V::AField>  the like for enumerations and values

usage: accessors.py OUT MODEL...
"""
import re
import sys

ENTITY = re.compile(r"^entity (\w+) : ([\w:]+)\((\w+) : ([\w:]+)\)[^{]*\{(.*?)\n\}", re.S | re.M)
VALUE = re.compile(r"^value (\w+)[^{]*\{(.*?)\n\}", re.S | re.M)
ENUM = re.compile(r"^enum (\w+) \{", re.M)
MEMBER = re.compile(r"^(\d+) ((?:virtual |const |static )*)(\w+)(\(.*?\))?(?: : (.*?))?(?: = .*)?$", re.S)
COLLECTION = re.compile(r"^(owns |refers |)([\w:]+)\[([\w:]+)\]$")


def upper_first(name):
    return name[0].upper() + name[1:]


def members(body):
    for statement in body.split(";"):
        statement = " ".join(statement.split())
        if statement:
            found = MEMBER.match(statement)
            if not found:
                raise SystemExit(f"accessors.py: cannot read member '{statement}'")
            yield found.groups()


def kind_of(name, parameters, type_, constructor_argument):
    """The kind of an attribute and its key type, as the descriptors call them."""
    if parameters is not None:
        return "operation", None
    collection = COLLECTION.match(type_)
    if collection:
        kinds = {"owns ": "childMap", "refers ": "refMap", "": "valueMap"}
        return kinds[collection[1]], collection[3]
    if type_.startswith("owns "):
        return "child", None
    return ("constField" if name == constructor_argument else "scalar"), None


GETTER = "static auto get({e} const& e) {{ return e.{a}(); }}"
KEYED = """static auto get({e} const& e, auto const& k) {{ return e.{a}(k); }}
    static auto del({e}& e, auto const& k) {{ return e.{a}Del(k); }}
    static void delAll({e}& e) {{ e.{a}DelAll(); }}
    static void notify({e}& e, auto const& k, auto const& m) {{ e.{a}Notify(k, m); }}
    static auto count({e} const& e) {{ return e.{a}s(); }}
    static auto iterator({e}& e) {{ return e.{a}Iterator(); }}
    static auto iterator({e}& e, auto const& k) {{ return e.{a}Iterator(k); }}
    static auto constIterator({e} const& e) {{ return e.{a}Iterator(); }}
    static auto constIterator({e} const& e, auto const& k) {{ return e.{a}Iterator(k); }}
    static auto iteratorConst({e} const& e) {{ return e.{a}IteratorConst(); }}
    using Iterator = {e}::{u}Iterator;
    using IteratorConst = {e}::{u}IteratorConst;
    using QorIterator = {e}::Qor{u}Iterator;"""
WRITERS = """
    static void set({e}& e, auto const& k, auto const& v) {{ e.{a}Is(k, v); }}
    static auto add({e}& e, auto const& k, auto const& v) {{ return e.new{u}(k, v); }}
    using Member = {e}::Qor{u};"""
OWNER = """
    static auto set({e}& e, Qor::Name const& n) {{ return e.{a}Is(n); }}
    static auto add({e}& e, Qor::Name const& n) {{ return e.new{u}(n); }}"""
BODY = {
    "scalar": GETTER + "\n    static void set({e}& e, auto const& v) {{ e.{a}Is(v); }}",
    "constField": GETTER,
    "valueMap": KEYED + WRITERS,
    "refMap": KEYED + WRITERS + "\n    static auto member({e} const& e, auto const& k) {{ return e.qor{u}(k); }}",
    "childMap": KEYED + OWNER,
    "child": GETTER + OWNER + "\n    static auto del({e}& e) {{ return e.{a}Del(); }}",
}


def accessors(entity, name, kind):
    filled = BODY[kind].format(e=entity, a=name, u=upper_first(name))
    return (f"template <>\nstruct Accessors<{entity}::{upper_first(name)}Attr> {{\n"
            f"    static constexpr auto kind = Qor::AttributeKind::{kind};\n    {filled}\n}};\n")


def handlers(attributes):
    for id_, name, kind, key in attributes:
        handler = "on" + upper_first(name)
        if kind in ("operation", "constField"):
            continue
        if key:
            yield f"    void {handler}({argument(key)} k) override {{ note({id_}, keyText(k)); }}"
            yield f'    void {handler}qorImmediate() override {{ note({id_}, "immediate"); }}'
            yield f'    void {handler}() override {{ note({id_}, "whole"); }}'
        else:
            yield f"    void {handler}() override {{ note({id_}); }}"


def argument(key):
    """Keys that are composite values of the models go by reference, all others by value."""
    return key + " const&" if key in COMPOSITES else BUILTINS.get(key, key)


BUILTINS = {"U16": "Qor::U16", "U32": "Qor::U32", "U64": "Qor::U64"}
COMPOSITES = set()


def recorder(entity, attributes):
    own = "\n".join(handlers(attributes))
    return (f"template <>\nclass Recorder<{entity}> : public Recording<{entity}> {{\n  public:\n"
            f"    using Recording::Recording;\n{own}\n}};\n")


def entities(text, namespace, known):
    for name, base, argument_name, _, body in ENTITY.findall(text):
        entity = f"{namespace}::{name}"
        attributes = list(known.get(base, []))
        for id_, _, member, parameters, type_ in members(body):
            kind, key = kind_of(member, parameters, type_, argument_name)
            if kind == "operation":
                continue
            attributes.append((id_, member, kind, key))
            yield accessors(entity, member, kind)
        known[name] = attributes
        yield recorder(entity, attributes)


def values(text, namespace):
    for name in ENUM.findall(text):
        enum = f"{namespace}::{name}"
        yield (f"template <>\nstruct EnumAccess<{enum}> {{\n"
               f"    static auto instance(unsigned int n) {{ return {enum}Instance(n); }}\n"
               f"    static auto instance(Qor::String8 const& n) {{ return {enum}Instance(n); }}\n}};\n")
    for name, body in VALUE.findall(text):
        for _, words, field, _, type_ in members(body):
            if "const" not in words and " computed from " not in type_:
                value = f"{namespace}::{name}"
                yield (f"template <>\nstruct FieldAccess<{value}::{upper_first(field)}Field> {{\n"
                       f"    static auto get({value} const& v) {{ return v.{field}(); }}\n}};\n")


def main(out, models):
    known = {}
    blocks = []
    units = []
    for model in models:
        with open(model, encoding="utf-8") as file:
            text = re.sub(r"//[^\n]*", "", file.read())
        namespace = re.search(r"^namespace (\w+);", text, re.M)[1]
        units.append(re.search(r"^unit (\w+);", text, re.M)[1])
        COMPOSITES.update(re.findall(r"^value (\w+)", text, re.M))
        blocks += list(values(text, namespace)) + list(entities(text, namespace, known))
    includes = "".join(f"#include <vgw/{unit}.h>\n" for unit in units)
    using = "".join(f"using Vgw::{name};\n" for name in sorted(COMPOSITES))
    with open(out, "w", encoding="utf-8") as file:
        file.write("// Made by accessors.py from the models.\n#ifndef CONTRACT_ACCESSORS_H\n#define CONTRACT_ACCESSORS_H\n\n"
                   f"{includes}#include \"Recording.h\"\n\nnamespace Contract {{\n\n{using}\n"
                   + "\n".join(blocks) + "\n}  // namespace Contract\n\n#endif\n")


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2:])
