#!/usr/bin/env python3
"""Holds what is written to what is there: every file and folder that README.md, CONTRIBUTING.md, docs/ and the
folders' README.md name exists, and the arrows that docs/architecture.md draws are the ones of the build.
"""

import fnmatch
import pathlib
import re
import subprocess
import sys

RAIZ = pathlib.Path(__file__).resolve().parents[2]
# What programs make while they run, or the machine has: no files of the project.
AJENOS = re.compile(r"^(build/|demo/|archivo/|norsa/|Quimo_Terminal|\.|/|~|\\|https?:|C:)|<|>|\{|\$|=|^\W+$")
DE_ARCHIVO = re.compile(r"\.(h|cpp|c|py|md|sql|cmake|txt|svg|png|conf|mdb|json)$")
# Files of a running restaurant that the pages speak of.
DEL_RESTAURANTE = {"Plantilla.mdb", "Quimo_Terminal.mdb", "red.conf", "QUIMO.conf", "odbcinst.ini", "smb.conf"}
PRIMERAS = ("README.md", "CONTRIBUTING.md")


def del_proyecto() -> list[str]:
    salida = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=RAIZ, capture_output=True, text=True,
                            check=True)
    return [a for a in salida.stdout.splitlines() if (RAIZ / a).exists()]


def existe(nombre: str, pagina: str, archivos: list[str], carpetas: set[str]) -> bool:
    """From the root, from src/, from the page's folder, or, for a bare name, anywhere."""
    nombre = nombre.rstrip("/")
    carpeta = str(pathlib.PurePosixPath(pagina).parent)
    for base in ("", "src/", "docs/", f"{carpeta}/"):
        lugar = re.sub(r"^\./", "", base + nombre)
        if "*" in lugar:
            if any(fnmatch.fnmatchcase(a, lugar) for a in archivos):
                return True
        elif lugar in carpetas or any(lugar + final in archivos for final in ("", ".h", ".cpp", ".py")):
            return True
    if "/" in nombre:
        return any(a.startswith(f"{carpeta}/") and a.endswith("/" + nombre) for a in archivos)
    cola = pathlib.PurePosixPath
    return any(fnmatch.fnmatchcase(cola(a).name, nombre) for a in archivos) or any(
        c.endswith("/" + nombre) for c in carpetas)


def nombrados(texto: str) -> set[str]:
    texto = re.sub(r"(?ms)^```.*?^```", "", texto)
    nombres = {m for m in re.findall(r"\]\(([^)#\s]+)[^)]*\)", texto) if not m.startswith("http")}
    for pedazo in re.findall(r"`([^`\n]+)`", texto):
        for palabra in pedazo.split():
            palabra = palabra.strip("\",;()")
            if AJENOS.search(palabra) or palabra in DEL_RESTAURANTE or palabra.isupper():
                continue
            if DE_ARCHIVO.search(palabra) or re.fullmatch(r"[a-z_0-9]+(/[a-z_0-9*.]+)*/", palabra) or re.match(
                    r"(src|docs|db|bench|script|tests|packaging|cmake)/", palabra):
                nombres.add(palabra)
    return nombres


def faltantes(archivos: list[str]) -> list[str]:
    carpetas = {str(p) for a in archivos for p in pathlib.PurePosixPath(a).parents if str(p) != "."}
    faltas = []
    for pagina in archivos:
        if not (pagina in PRIMERAS or re.match(r"(docs/.*|src/.*README)\.md$", pagina)):
            continue
        carpeta = pathlib.PurePosixPath(pagina).parent
        for nombre in sorted(nombrados((RAIZ / pagina).read_text(encoding="utf-8"))):
            if nombre.startswith("../"):
                if not (RAIZ / carpeta / nombre).resolve().exists():
                    faltas.append(f"{pagina}: {nombre}")
            elif not existe(nombre, pagina, archivos, carpetas):
                faltas.append(f"{pagina}: {nombre}")
    return faltas


def flechas_dibujadas() -> set[str]:
    texto = (RAIZ / "docs/architecture.md").read_text(encoding="utf-8")
    bloque = re.search(r"(?ms)^```arrows\n(.*?)^```", texto)
    if bloque is None:
        return set()
    return {" ".join(linea.split()) for linea in bloque.group(1).splitlines() if linea.strip()}


def flechas_construidas(archivos: list[str]) -> set[str]:
    destinos: dict[str, list[str]] = {}
    for archivo in archivos:
        if not re.match(r"src/.*CMakeLists\.txt$", archivo):
            continue
        texto = re.sub(r"#.*", "", (RAIZ / archivo).read_text(encoding="utf-8"))
        for llamada in re.findall(r"quimo_module\(([^()]*(?:\([^()]*\)[^()]*)*)\)", texto):
            carpeta, *palabras = llamada.split()
            clase, destinos[carpeta] = "", []
            for palabra in palabras:
                if palabra in ("SOURCES", "DEPENDS", "PRIVATE_DEPENDS", "PUBLIC_HEADERS"):
                    clase = palabra
                elif clase.endswith("DEPENDS") and palabra.startswith("quimo_"):
                    destinos[carpeta].append(palabra)
    # Targets' names to folders' names: quimo_data_odbc is data/odbc.
    nombres = {"quimo_" + carpeta.replace("/", "_"): carpeta for carpeta in destinos}
    return {" ".join([carpeta, "->", *sorted(nombres[d] for d in de)]) if de else carpeta
            for carpeta, de in destinos.items()}


def main() -> int:
    archivos = del_proyecto()
    faltas = [f"{f}: no such file" for f in faltantes(archivos)]
    dibujadas, construidas = flechas_dibujadas(), flechas_construidas(archivos)
    faltas += [f"docs/architecture.md: not drawn: {f}" for f in sorted(construidas - dibujadas)]
    faltas += [f"docs/architecture.md: drawn, but not built: {f}" for f in sorted(dibujadas - construidas)]
    print("\n".join(faltas))
    return 1 if faltas or not construidas else 0


if __name__ == "__main__":
    sys.exit(main())
