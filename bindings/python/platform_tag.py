"""The platform of a wheel, read from the library that it holds."""
import re
import subprocess

# The glibc of the oldest systems whose C++ runtime has these versions: GCC 10, 11 and 12.
GLIBC_OF_GLIBCXX = {28: 31, 29: 34, 30: 35}


def platform_tag(library):
    """manylinux_2_NN_MACHINE by the versions of glibc and libstdc++ that the library needs; win_amd64."""
    headers = subprocess.run(["objdump", "-p", str(library)], check=True, stdout=subprocess.PIPE, encoding="utf-8").stdout
    if "file format pei-x86-64" in headers:
        return "win_amd64"
    with open(library, "rb") as file:
        name = {62: "x86_64", 183: "aarch64"}[int.from_bytes(file.read(20)[18:], "little")]
    glibc = max(int(minor) for minor in re.findall(r"GLIBC_2\.([0-9]+)", headers))
    glibcxx = max((int(patch) for patch in re.findall(r"GLIBCXX_3\.4\.([0-9]+)", headers)), default=0)
    least = min((of for version, of in GLIBC_OF_GLIBCXX.items() if version >= glibcxx), default=None)
    if least is None:
        raise SystemExit(f"{library} needs GLIBCXX_3.4.{glibcxx}: say in {__file__} which glibc systems with it have")
    return f"manylinux_2_{max(glibc, least)}_{name}"
