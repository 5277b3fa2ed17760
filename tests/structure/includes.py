"""Walks the #include lines of src/, tools/ and include/ and tells what breaks the order of the house.

    includes.py ROOT

Rooms include one way only, headers form no circle, and only folders named win32 or posix know an operating system.
"""
import pathlib
import re
import sys

# What a room may include beside itself, include/kapdf and src/base: these rooms, and what they may include. Includes
# are written from the folder of the rooms.
ROOMS = {
    "src": {
        "base": [],
        "platform": [],
        "geometry": [],
        "renderer": ["platform"],
        "io": ["platform", "geometry"],
        "pdfmodel": ["io"],
        "raster": ["pdfmodel"],
        "fonts": ["pdfmodel"],
        "content": ["raster", "fonts"],
        "writer": ["pdfmodel", "fonts"],
        "intake": ["platform"],
        "filter": ["content", "writer", "intake", "renderer"],
    },
    "tools/kapdf": {
        "system": [],
        "records": ["system"],
        "jsonl": ["records"],
        "svg": ["records"],
        "pictures": ["records"],
        "module": ["records"],
        "commands": ["jsonl", "svg", "pictures", "module"],
    },
}

# Headers in angle brackets with a dot that belong to no operating system; those without one are C++'s own.
PORTABLE = {"assert.h", "ctype.h", "errno.h", "float.h", "inttypes.h", "limits.h", "locale.h", "math.h", "setjmp.h",
            "signal.h", "stdarg.h", "stdbool.h", "stddef.h", "stdint.h", "stdio.h", "stdlib.h", "string.h", "time.h",
            "uchar.h", "wchar.h", "zlib.h", "libdeflate.h", "jpeglib.h", "jerror.h", "jbig2.h", "ft2build.h", "openjpeg.h",
            "png.h", "nlohmann/json.hpp", "CLI/CLI.hpp"}

INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)')
SYSTEM_TEST = re.compile(r"^\s*#\s*(?:if|ifdef|ifndef|elif)\b.*\b_*(?:WIN32|WIN64|MINGW\w*|MSC_VER|linux|unix|APPLE|GLIBC)_*\b")


def reach(arrows, room):
    rooms, todo = {"base"}, [room]
    while todo:
        next_room = todo.pop()
        if next_room not in rooms or next_room == "base":
            rooms.add(next_room)
            todo += arrows[next_room]
    return rooms


def sources(folder):
    return sorted(p for p in folder.rglob("*") if p.suffix in (".h", ".cpp", ".c", ".hpp", ".inc"))


def knows_system(path, root):
    parts = path.relative_to(root).parts
    return parts[:2] in (("src", "platform"), ("tools", "kapdf")) and bool({"win32", "posix"} & set(parts[:-1]))


def room_of(folder, path):
    """The room's name, or for what lies beside the rooms that of the file; None outside of the folder."""
    return path.relative_to(folder).parts[0] if folder in path.parents else None


def check(root):
    """Returns the list of violations and the number of files seen."""
    root = pathlib.Path(root)
    found, graph, seen = [], {}, 0
    for top in (*ROOMS, "include"):
        folder, arrows = root / top, ROOMS.get(top)
        for path in sources(folder):
            seen += 1
            place = path.relative_to(root).as_posix()
            room = room_of(folder, path)
            if arrows and room not in arrows:
                found.append(f"{place}: {room} is no room of {top}")
                continue
            for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
                where = f"{place}:{number}"
                if SYSTEM_TEST.match(line) and not knows_system(path, root):
                    found.append(f"{where}: asks for the operating system outside of the platform")
                match = INCLUDE.match(line)
                if not match:
                    continue
                quoted, angled = match.groups()
                if angled:
                    portable = "." not in angled or angled in PORTABLE or angled.startswith("qpdf/")
                    if not portable and not knows_system(path, root):
                        found.append(f"{where}: <{angled}> is no portable header")
                    continue
                target = resolve(root, top, quoted)
                if target is None:
                    found.append(f'{where}: "{quoted}" is not found from this place')
                    continue
                graph.setdefault(path, []).append(target)
                other = arrows and room_of(folder, target)
                if other:
                    if other not in reach(arrows, room):
                        found.append(f"{where}: {room} may not include {other}")
                    if knows_system(target, root) and other != room:
                        found.append(f"{where}: {quoted} belongs to the inside of {other}")
                elif root / "include" not in target.parents and room_of(root / "src", target) != "base":
                    found.append(f"{where}: {top} knows its surroundings through include/kapdf and src/base only")
    for path in sources(root / "tools"):
        if not any(root / top in path.parents for top in ROOMS):
            found.append(f"{path.relative_to(root).as_posix()}: belongs to a folder whose rooms are not known")
    return found + circles(root, graph), seen


def resolve(root, top, name):
    bases = {"src": ["src"], "tools/kapdf": ["tools/kapdf", "src"], "include": []}[top]
    for base in bases + ["include"]:
        target = (root / base / name).resolve()
        if target.is_file():
            return target
    return None


def circles(root, graph):
    found, done, path = [], set(), []

    def visit(node):
        if node in path:
            ring = path[path.index(node):] + [node]
            found.append("circle: " + " -> ".join(p.relative_to(root).as_posix() for p in ring))
            return
        if node in done:
            return
        path.append(node)
        for target in graph.get(node, []):
            visit(target)
        path.pop()
        done.add(node)

    for start in sorted(graph):
        visit(start)
    return found


def main():
    violations, seen = check(pathlib.Path(sys.argv[1]).resolve())
    for line in violations:
        print(line)
    print(f"{seen} files, {len(violations)} violations")
    return 1 if violations or seen == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
