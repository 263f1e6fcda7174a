"""Writes the reference of the Python package as Markdown, from its docstrings.

    python_reference.py PACKAGE_FOLDER > PAGE

The sources are parsed, not imported, so the C library need not be built.
"""

import ast
import sys
from pathlib import Path


def signature(node: ast.AST) -> str:
    if isinstance(node, ast.ClassDef):
        bases = ", ".join(ast.unparse(base) for base in node.bases)
        return f"class {node.name}({bases})" if bases else f"class {node.name}"
    returns = f" -> {ast.unparse(node.returns)}" if node.returns else ""
    return f"{node.name}({ast.unparse(node.args)}){returns}"


def fields(node: ast.AST) -> list:
    """The fields of a record or enumeration, each with the text below it."""
    lines = []
    for position, item in enumerate(node.body if isinstance(node, ast.ClassDef) else []):
        if isinstance(item, ast.AnnAssign):
            text = f"`{item.target.id}: {ast.unparse(item.annotation)}`"
        elif isinstance(item, ast.Assign) and not item.targets[0].id.startswith("_"):
            text = f"`{ast.unparse(item)}`"
        else:
            continue
        following = node.body[position + 1] if position + 1 < len(node.body) else None
        if isinstance(following, ast.Expr) and isinstance(following.value, ast.Constant):
            text += ": " + " ".join(str(following.value.value).split())
        lines.append(f"- {text}")
    return lines


def main() -> None:
    package = Path(sys.argv[1])
    definitions = {}
    for path in sorted(package.glob("*.py")):
        for node in ast.parse(path.read_text()).body:
            if isinstance(node, (ast.ClassDef, ast.FunctionDef)):
                definitions[node.name] = node
    module = ast.parse((package / "__init__.py").read_text())
    names = next(ast.literal_eval(node.value) for node in module.body
                 if isinstance(node, ast.Assign) and node.targets[0].id == "__all__")
    print("# Python reference\n\n" + ast.get_docstring(module) + "\n")
    for name in names:
        node = definitions.get(name)
        if node is None:
            continue
        print(f"## {name}\n\n```py\n{signature(node)}\n```\n")
        print((ast.get_docstring(node) or "") + "\n")
        print("\n".join(fields(node)) + "\n")
        for method in (item for item in node.body if isinstance(item, ast.FunctionDef)):
            if not method.name.startswith("_") and ast.get_docstring(method):
                print(f"`{signature(method)}`\n\n{ast.get_docstring(method)}\n")


main()
