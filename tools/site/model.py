"""What the public headers declare: Doxygen's XML of each OpenCL version, merged so that each declaration is there once."""

import os
import pathlib
import re
import subprocess
import xml.etree.ElementTree

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
VERSIONS = {"1.0": 100, "1.1": 110, "1.2": 120, "2.0": 200, "2.1": 210, "2.2": 220}
NEWEST = "2.2"
VERSIONED = "include/vorn/mero/opencl"
ANY = "opencl_x_y"  # stands for the six namespaces
EXACT = f"vorn::mero::{ANY}"
HIDDEN = re.compile(r"(^|::)detail(::|$)|^std(::|$)|^api$|::owner_access$|::internal::kind$|::handle_hash$")
SPECIALIZED = ("vorn::mero::api",)  # their specializations say what they are


def run_doxygen(out):
    """One run per version, two at a time; the folders of XML by version. What is the same in all versions is read once."""
    folders = {version: out / version / "xml" for version in VERSIONS}
    running = []
    for version, number in VERSIONS.items():
        folders[version].parent.mkdir(parents=True, exist_ok=True)
        environment = {"NUMBER": str(number), "NAMESPACE": "opencl_" + version.replace(".", "_"),
                       "INPUT": "include" if version == NEWEST else VERSIONED, "OUT": str(folders[version].parent)}
        running.append(subprocess.Popen(["doxygen", str(ROOT / "tools/site/Doxyfile")], cwd=ROOT,
                                        env={**os.environ, **environment}))
        if len(running) == 2 and running.pop(0).wait():
            raise SystemExit("Doxygen failed")
    if any(process.wait() for process in running):
        raise SystemExit("Doxygen failed")
    return folders


def neutral(text):
    return re.sub(r"\bopencl_[12]_[012]\b", ANY, text)


def spelled(text):
    """A declaration in the style of the headers: `T const& name`."""
    text = re.sub(r"\s+", " ", neutral(text)).strip()
    text = re.sub(r"< ", "<", re.sub(r" >", ">", text))
    text = re.sub(r"(?<![&*(]) ?([*&]{1,2}) ?(?=[\w.]|const)", r"\1 ", re.sub(r" ([*&]+)", r"\1", text))
    text = re.sub(r"([*&]) (?=\.\.\.|[,)>=])", r"\1", text)
    text = re.sub(r"(?<=[\w)}]) ?= ?(?=[\w{\"-])", " = ", text) if text.startswith("(") else text
    text = re.sub(r" ?= ?(default|delete)$", r" = \1", text)
    return re.sub(r"(\w)\(\*", r"\1 (*", text.replace("(* ", "(*"))


def joined(element):
    return "".join(element.itertext()) if element is not None else ""


def empty(element):
    return element is None or not joined(element).strip()


class item:
    """A class, function, type, constant or enumerator."""

    def __init__(self, element, scope, name, kind):
        self.scope, self.name, self.kind = scope, name, kind
        self.versions = set()
        self.text = [part for part in (element.find("briefdescription"), element.find("detaileddescription"))
                     if not empty(part)]
        place = element.find("location")
        self.file = place.get("file") if place is not None else ""
        self.line = int(place.get("line")) if place is not None else 0
        self.template = [(spelled(joined(each.find("type"))), each.findtext("declname") or each.findtext("defname") or "",
                          spelled(joined(each.find("defval")))) for each in element.findall("templateparamlist/param")]
        self.members, self.bases, self.value, self.arguments, self.type = [], [], "", "", ""
        self.specializations, self.alias = [], None

    @property
    def qualified(self):
        return f"{self.scope}::{self.name}" if self.scope else self.name

    @property
    def is_class(self):
        return self.kind in ("class", "struct", "union")

    @property
    def exempt(self):
        """What is not documented by itself: what the compiler makes, or a name brought in from a base."""
        return bool(re.search(r"= (default|delete)$", self.arguments)) or self.kind == "inherited"

    def template_head(self):
        if not self.template:
            return ""
        parts = []
        for kind, name, default in self.template:
            parts.append((f"{kind} {name}" if name else kind) + (f" = {default}" if default else ""))
        return f"template <{', '.join(parts)}>"

    def declaration(self):
        """The declaration as the headers have it, without a body."""
        head = self.template_head()
        lines = [head] if head else []
        if self.is_class:
            bases = re.sub(rf"\b({self.scope}|{EXACT}|vorn::mero|mero)::", "", ", ".join(f"public {name}" for name, _ in self.bases))
            bases = f" : {bases}" if bases else ""
            lines.append(f"{self.kind} {self.name}{bases}")
        elif self.kind == "enum":
            lines.append(f"enum class {self.name}" + (f" : {self.type}" if self.type else ""))
        elif self.kind == "typedef":
            lines.append(f"using {self.name} = {self.type}")
        elif self.kind == "variable":
            lines.append(f"{self.type} {self.name}{self.arguments}{self.value}")
        else:
            lines.append(f"{self.type} {self.name}{self.arguments}".strip())
        return lines


def member_of(element, scope, owner_name):
    kind = element.get("kind")
    name = neutral(element.findtext("name"))
    made = item(element, scope, name, kind)
    made.type = spelled(joined(element.find("type")))
    made.arguments = spelled(element.findtext("argsstring") or "")
    value = re.sub(r"\s+", " ", joined(element.find("initializer"))).strip()
    if kind != "function" and 1 < len(value) <= 60 and "(" not in value:  # others are code, not values
        made.value = " " + spelled(value)
    if kind == "typedef" and "(*)" in made.type:
        made.arguments = ""
    if kind == "function":
        prefix = [word for word in ("static", "explicit") if element.get(word) == "yes"]
        if element.get("virt") in ("virtual", "pure-virtual") and "override" not in made.arguments:
            prefix.append("virtual")
        made.type = " ".join([*(word for word in prefix if word not in made.type.split()), made.type]).strip()
        if owner_name and not joined(element.find("type")).strip() and name != owner_name \
                and name != "~" + owner_name and not name.startswith("operator"):
            made.kind = "inherited"
    elif kind == "variable" and element.get("static") == "yes" and "static" not in made.type:
        made.type = "static " + made.type
    if kind == "enum":
        for each in element.findall("enumvalue"):
            value = item(each, made.qualified, each.findtext("name"), "enumvalue")
            value.file, value.line = made.file, made.line
            value.value = re.sub(r"^=\s*", "", joined(each.find("initializer")).strip())
            made.members.append(value)
    return made


class model:
    def __init__(self):
        self.items = {}  # by scope, kind, name and arguments

    def add(self, made, version):
        key = (made.scope, made.kind, made.name, made.arguments,
               made.type if made.name.startswith("operator") else "")
        known = self.items.get(key)
        if known is None:
            known = self.items[key] = made
        else:  # the newest version describes it
            known.text, known.type = made.text or known.text, made.type
            known.value = known.value if known.value == made.value else ""
            if made.kind == "enum":
                old = {each.name: each for each in known.members}
                for value in made.members:
                    value.versions = old.pop(value.name, value).versions
                known.members = made.members + list(old.values())
            else:
                known.bases = made.bases
        new = {version} if made.file.startswith("vorn/mero/opencl/") else set(VERSIONS)
        known.versions |= new
        for value in known.members if made.kind == "enum" else ():
            if any(each.name == value.name for each in made.members):
                value.versions |= new

    def read(self, folder, version):
        for path in sorted(folder.glob("*.xml")):
            if path.name.startswith(("class", "struct", "union", "namespace", "nq_8hpp")):
                self.read_compound(xml.etree.ElementTree.parse(path).getroot().find("compounddef"), version)

    def read_compound(self, compound, version):
        name = re.sub(r"< (\d+) >", "<Version>", neutral(re.sub(r"\s+", " ", compound.findtext("compoundname"))))
        kind = compound.get("kind")
        if HIDDEN.search(name) or "::internal" in name and ANY in name and empty(compound.find("detaileddescription")) \
                and empty(compound.find("briefdescription")) and kind != "namespace":
            return
        simple, owner = name, None
        if kind in ("class", "struct", "union"):
            base = re.split(r"<", name)[0].strip()
            scope, _, simple = base.rpartition("::")
            specialized = name[len(base):].strip()
            made = item(compound, scope, simple + (spelled(specialized) if specialized and base not in SPECIALIZED else ""),
                        kind)
            if base in SPECIALIZED:
                if not specialized:
                    return
                made.template = [("int", "Version", "")]
            made.bases = [(spelled(joined(each)), each.get("refid")) for each in compound.findall("basecompoundref")
                          if each.get("prot") == "public"]
            self.add(made, version)
            owner, name = simple, made.qualified
        elif kind == "file":
            name = ""
        elif kind == "namespace" and name.endswith(f"{ANY}::internal"):
            return
        for element in compound.iter("memberdef"):
            if element.get("prot") == "public" and element.get("kind") in ("function", "typedef", "variable", "enum"):
                if element.findtext("name").endswith("_"):  # within an unnamed union
                    continue
                if kind == "file" and not element.findtext("name").startswith("nq_"):
                    continue
                self.add(member_of(element, name, owner), version)


def read(out):
    """All items, each with the versions that have it; those of classes are in `members` of their class."""
    folders, merged = run_doxygen(out), model()
    for version, folder in folders.items():
        merged.read(folder, version)
    items = sorted(merged.items.values(), key=lambda each: (each.file, each.line))
    by_name = {each.qualified: each for each in items if each.is_class}
    roots = []
    for each in items:
        owner = by_name.get(each.scope)
        primary = by_name.get(each.qualified.split("<")[0]) if each.is_class and "<" in each.name else None
        if primary:
            primary.specializations.append(each)
        elif owner is not None and owner is not each:
            owner.members.append(each)
        else:
            roots.append(each)
    return roots


def missing(roots):
    """Where a text is missing, and how many were looked at."""
    without, count = [], 0

    def visit(each):
        nonlocal count
        if each.exempt:
            return
        count += 1
        if not each.text:
            without.append(f"include/{each.file}:{each.line}: {each.qualified.replace(ANY, 'opencl_*')} has no text")
        if each.scope != "nq::block":
            for member in each.members:
                visit(member)

    for each in roots:
        visit(each)
    return without, count
