"""Looks into finished binaries with objdump.

    binaries.py exports OBJDUMP MODULE DEF NAME...   the module exports these names and no other; on Windows also
                                                     those that DEF forwards to geotiff.dll
    binaries.py imports OBJDUMP FILE...              the Windows files need DLLs of the system only
"""
import re
import subprocess
import sys

SYSTEM_DLLS = {"kernel32.dll", "msvcrt.dll", "user32.dll", "advapi32.dll", "gdi32.dll", "comdlg32.dll", "shell32.dll",
               "ole32.dll", "comctl32.dll"}


def dump(objdump, *arguments):
    return subprocess.run([objdump, *arguments], check=True, capture_output=True, text=True).stdout


def exports(objdump, module):
    """The module's own names, and those it forwards to geotiff.dll."""
    if module.lower().endswith(".dll"):
        text = dump(objdump, "-p", module)
        forwarded = set(re.findall(r"Forwarder RVA -- geotiff\.(\S+)$", text, re.M))
        table = text.split("[Ordinal/Name Pointer] Table")[1]
        names = set(re.findall(r"^\s*\[\s*\d+\](?:\s+\+base\[\s*\d+\]\s+[0-9a-f]+)?\s+(\S+)$", table, re.M))
        return names - forwarded, forwarded & names
    names = set()
    for line in dump(objdump, "-T", module).splitlines():
        fields = line.split()
        # address, flags ..., section, size, [version], name; what the module takes from others is undefined
        if re.match(r"^[0-9a-f]{16} ", line) and "*UND*" not in fields:
            names.add(fields[-1])
    return names, set()


def main():
    mode, objdump, *rest = sys.argv[1:]
    if mode == "exports":
        module, definition, *names = rest
        own, forwarded = exports(objdump, module)
        print("exports:", *sorted(own), "and", len(forwarded), "forwarders")
        expected = set()
        if module.lower().endswith(".dll"):
            with open(definition, encoding="ascii") as lines:
                expected = {line.split()[0] for line in lines if re.fullmatch(r"\s+(\w+) = geotiff\.\1\n", line)}
            if not {"GTIFNew", "GTIFFree", "GTIFKeyGet", "GTIFKeySet", "GTIFWriteKeys"} <= expected:
                return 1
        return 0 if own == set(names) and forwarded == expected else 1
    failed = not rest
    for name in filter(None, rest):
        needed = re.findall(r"DLL Name: (\S+)", dump(objdump, "-p", name))
        print(name, "needs", *sorted(needed))
        failed = failed or not needed or any(dll.lower() not in SYSTEM_DLLS for dll in needed)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
