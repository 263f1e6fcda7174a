"""Tests of the generator of mutants."""

import unittest

from mutants import DATA, MARK, Source, with_number


def changes(source):
    return [mutant.change() for mutant in Source("a.cpp", source).mutants]


class MutantsTest(unittest.TestCase):
    def test_condition(self):
        found = changes("int F(int a, int b) {\n  if (a < 3 && b) {\n    a = b;\n  }\n  return a;\n}\n")
        self.assertEqual(found, [
            "operand dropped: a < 3 -> true", "relational: < -> <=", "relational: < -> >=",
            "constant: 3 -> 4", "constant: 3 -> 2", "logical: && -> ||", "operand dropped: b -> true",
            "statement deleted: a = b -> (removed)", "return: a -> {}", "return: a -> (a) + 1"])

    def test_applied_mutant_differs_in_its_place_only(self):
        source = "bool F(bool a) {\n  return !a;\n}\n"
        found = [mutant.applied(source) for mutant in Source("a.cpp", source).mutants]
        self.assertIn("bool F(bool a) {\n  return a;\n}\n", found)
        self.assertIn("bool F(bool a) {\n  return true;\n}\n", found)

    def test_comments_includes_and_declarations_stay(self):
        self.assertEqual(changes('#include "a.h"\n// a < 3\n/* 4 */\nusing A = B<5>;\n'
                                 "static_assert(sizeof(int) == 4);\nint f(int a);\n"), [])

    def test_equal_changes_of_equal_lines_are_numbered(self):
        line = "  f(0);\n"
        found = Source("a.cpp", "void F() {\n" + line + line + "}\n").mutants
        self.assertEqual([m.change() for m in found if m.operator == "constant"],
                         ["constant: 0 -> 1", "constant #2: 0 -> 1"])

    def test_key_does_not_change_with_the_lines_around(self):
        before = Source("a.cpp", "void F() {\n  f(0);\n}\n").mutants
        after = Source("a.cpp", "int g;\n\nvoid F() {\n  h();\n  f(0);\n}\n").mutants
        self.assertLess({m.key() for m in before}, {m.key() for m in after})

    def test_literals(self):
        self.assertEqual(changes("const char* a = \"b\";\nchar c = 'd';\nlong e = 0x1Fu;\nlong f = 1'0;\n"),
                         ['string: "b" -> "Xb"', "character: 'd' -> 'X'", "constant: 0x1Fu -> 0x20u",
                          "constant: 0x1Fu -> 0x1Eu", "constant: 1'0 -> 11", "constant: 1'0 -> 9"])

    def test_rows_of_long_tables_are_thinned(self):
        rows = "".join('  {"a%d", %d},\n' % (n, n) for n in range(24))
        found = Source("a.cpp", "const Row kRows[] = {\n" + rows + "};\n").mutants
        self.assertEqual({m.operator for m in found}, {"string", "table row deleted"})
        self.assertEqual(len(found), 4)

    def test_copy_with_many_mutants_has_the_body_of_a_function_for_each(self):
        source = Source("a.cpp", "bool F(bool a) {\n  return !a;\n}\n")
        text, numbers = source.together(dict(enumerate(source.mutants, 7)))
        self.assertEqual(numbers, {7, 8, 9})
        self.assertEqual(text, DATA + """#line 1 "original"
bool F(bool a) {
switch (kestrel_mutants.number) {
case 7: {
#line 1 "mutant7"

  return a;

} break;
case 8: {
#line 1 "mutant8"

  return {};

} break;
case 9: {
#line 1 "mutant9"

  return true;

} break;
default: {
#line 1 "original"

  return !a;

}
}
}
""")

    def test_copy_with_many_mutants_has_those_in_functions(self):
        source = Source("a.cpp", """
const int a = 1;
constexpr int F() { return 2; }
namespace n {
class B {
  B() : b(3) { c = 4; }
  int D() const { return [] { return 5; }(); }
};
}
""")
        _, numbers = source.together(dict(enumerate(source.mutants)))
        self.assertEqual({source.mutants[number].old for number in numbers if
                          source.mutants[number].operator == "constant"}, {"4", "5"})

    def test_number_is_written_wherever_the_mark_is(self):
        program = b"x" + MARK + b"\0\0\0\0y" + MARK + b"\1\0\0\0"
        self.assertEqual(with_number(program, 0x5C31), b"x" + MARK + b"\x31\x5c\0\0y" + MARK
                         + b"\x31\x5c\0\0")

    def test_mark_fills_its_place(self):
        self.assertEqual(len(MARK), 16)


if __name__ == "__main__":
    unittest.main()
