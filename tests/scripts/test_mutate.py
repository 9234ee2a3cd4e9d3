"""Hold the mutants that scripts/mutate makes to a source of a few lines."""

import importlib.machinery
import importlib.util
import pathlib
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "scripts/mutate"
LOADER = importlib.machinery.SourceFileLoader("mutate", str(SCRIPT))
mutate = importlib.util.module_from_spec(
    importlib.util.spec_from_loader("mutate", LOADER))
LOADER.exec_module(mutate)


def mutated(source, kind):
    """Every text that one mutant of a kind makes of the source."""
    return sorted(source[:mutant.start] + mutant.text + source[mutant.end:]
                  for mutant in mutate.mutants_in(source, "source.cpp")
                  if mutant.kind == kind)


class Mutants(unittest.TestCase):
    def test_operators(self):
        self.assertEqual(mutated("x = a + b;", "operator"), ["x = a - b;"])
        self.assertEqual(mutated("x = a < b && !c;", "operator"),
                         ["x = a < b && c;", "x = a < b || !c;",
                          "x = a <= b && !c;"])
        self.assertEqual(mutated("std::array<int, n> a;", "operator"), [])

    def test_conditions(self):
        self.assertEqual(mutated("if (f(a) > b) g();", "condition"),
                         ["if (!(f(a) > b)) g();"])

    def test_constants(self):
        self.assertEqual(mutated("x = 10;", "constant"), ["x = 11;", "x = 9;"])
        self.assertEqual(mutated("x = 0;", "constant"), ["x = 1;"])
        self.assertEqual(mutated("x = 0.29F + 1.9e-5;", "constant"),
                         ["x = 0.28F + 1.9e-5;", "x = 0.29F + 1.8e-5;"])
        self.assertEqual(mutated("x = 0xFFU;", "constant"), ["x = 0xFEU;"])
        self.assertEqual(mutated("vec4 x1;", "constant"), [])

    def test_statements(self):
        source = "{\n  f(1);\n  const int a = g();\n  a.b[2] = f(\n      3);\n}"
        self.assertEqual(
            mutated(source, "statement"),
            ["{\n  ;\n  const int a = g();\n  a.b[2] = f(\n      3);\n}",
             "{\n  f(1);\n  const int a = g();\n  ;\n}"])

    def test_order(self):
        self.assertEqual(mutated("{\n  f(1);\n  g();\n  a = 2;\n}", "order"),
                         ["{\n  g();\n  f(1);\n  a = 2;\n}"])

    def test_cases(self):
        self.assertEqual(mutated("{\n  case A:\n    f();\n}", "case"),
                         ["{\n\n    f();\n}"])
        self.assertEqual(mutated("{\n  {a, b},\n  {c, d},\n}", "case"),
                         ["{\n\n  {c, d},\n}", "{\n  {a, b},\n\n}"])

    def test_what_is_no_code_stays(self):
        for source in ("// a + 1\n", "/* a + 1\n */", '#include "a + 1"\n',
                       'x = "a + 1";', "x = '+';", "static_assert(a + 1);",
                       'x = R"(a + "1")";'):
            self.assertEqual(mutate.mutants_in(source, "source.cpp"), [],
                             source)


class Sample(unittest.TestCase):
    MUTANTS = [mutate.Mutant(file, place, place + 1, "", kind)
               for file in "ab" for kind in ("constant", "order")
               for place in range(100)]

    def test_is_the_same_for_the_same_seed(self):
        first = mutate.sample(self.MUTANTS, 20, 1)
        self.assertEqual(first, mutate.sample(self.MUTANTS, 20, 1))
        self.assertNotEqual(first, mutate.sample(self.MUTANTS, 20, 2))
        self.assertEqual(len(set(first)), 20)

    def test_takes_kinds_and_files_in_turn(self):
        sample = mutate.sample(self.MUTANTS, 20, 1)
        for file in "ab":
            for kind in ("constant", "order"):
                self.assertEqual(
                    sum((mutant.file, mutant.kind) == (file, kind)
                        for mutant in sample), 5)
        self.assertEqual(len(mutate.sample(self.MUTANTS, 999, 1)), 400)


if __name__ == "__main__":
    unittest.main()
