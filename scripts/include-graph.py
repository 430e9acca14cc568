#!/usr/bin/env python3
"""Prints the game's include graph between modules (a header and its source
count as one module) and the circles in it, largest first.

    scripts/include-graph.py [src-folder]

Exits 1 when any circle passes through app/, so it can guard the layering.
"""
import os
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"')


def modules(root):
    graph = {}
    for folder, _, files in os.walk(root):
        for name in files:
            if not name.endswith((".h", ".cpp")):
                continue
            path = os.path.join(folder, name)
            module = os.path.splitext(os.path.relpath(path, root))[0]
            edges = graph.setdefault(module, set())
            with open(path, encoding="utf-8", errors="replace") as text:
                for line in text:
                    found = INCLUDE.match(line)
                    if found:
                        target = os.path.splitext(found.group(1))[0]
                        if target != module:
                            edges.add(target)
    return {m: {t for t in e if t in graph} for m, e in graph.items()}


def circles(graph):
    """Tarjan's strongly connected components with more than one module."""
    index, low, stack, on_stack, found = {}, {}, [], set(), []
    counter = [0]

    def visit(node):
        index[node] = low[node] = counter[0]
        counter[0] += 1
        stack.append(node)
        on_stack.add(node)
        for target in sorted(graph[node]):
            if target not in index:
                visit(target)
                low[node] = min(low[node], low[target])
            elif target in on_stack:
                low[node] = min(low[node], index[target])
        if low[node] == index[node]:
            component = []
            while True:
                member = stack.pop()
                on_stack.discard(member)
                component.append(member)
                if member == node:
                    break
            if len(component) > 1:
                found.append(sorted(component))

    sys.setrecursionlimit(10000)
    for node in sorted(graph):
        if node not in index:
            visit(node)
    return sorted(found, key=len, reverse=True)


def main():
    root = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "..", "src")
    graph = modules(root)
    found = circles(graph)
    print(f"{len(graph)} modules, {sum(len(e) for e in graph.values())} includes, {len(found)} circles")
    for component in found:
        print(f"circle of {len(component)}: {' '.join(component)}")
    through_app = [c for c in found if any(m.startswith("app/") for m in c)]
    core_out = sorted({t for m, e in graph.items() if m.startswith("core/") for t in e if not t.startswith("core/")})
    if core_out:
        print(f"core/ includes: {' '.join(core_out)}")
    return 1 if through_app or core_out else 0


if __name__ == "__main__":
    sys.exit(main())
