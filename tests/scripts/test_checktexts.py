"""scripts/check-texts finds what it is there for, and nothing in the code as it is."""

import pathlib
import subprocess
import tempfile
import unittest

TOP = pathlib.Path(__file__).resolve().parents[2]
TABLE = """inline constexpr char16_t section[] = u"Hall";
inline constexpr OwnText silence{section, u"SILENCE",
                                 u"Nobody says “%1” "
                                 u"\\"twice\\"."};
"""
TIPS = '[Message & Text]\r\nNO_LOG=There is no log.\r\n\r\n[Hall]\r\nSILENCE=Nobody says “%1” "twice".\r\n'


class Test(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.plant("src/hall/halltexts.h", TABLE)
        self.plant("tips.dll", TIPS)

    def plant(self, name, text):
        file = self.folder / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(text.encode())

    def check(self):
        arguments = [TOP / "scripts/check-texts", self.folder / "src", self.folder / "tips.dll"]
        done = subprocess.run(arguments, capture_output=True, text=True)
        return done.returncode, done.stdout + done.stderr

    def test_the_code_holds_no_sentence_and_the_language_file_all(self):
        done = subprocess.run([TOP / "scripts/check-texts"], capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stdout + done.stderr), (0, ""))

    def test_a_sentence_in_the_code_is_named_with_its_place(self):
        self.assertEqual(self.check(), (0, ""))
        for planted in (
            'box(u"The file is gone."_s);',
            'box("the file is gone");',
            'box(u"The file \\"%1\\""_s.arg(name));',
            'box(u"The "\n    u"file is gone."_s);',
            'box(uR"(The file is gone.)"_s);',
            'reportFault(u"x"_s); box(u"The file is gone."_s);',
            'box(u"&New Account..."_s); // as in "menus.dll"',
        ):
            with self.subTest(planted):
                self.plant("src/hall/door.cpp", f"// Says something.\n\nvoid f()\n{{\n    {planted}\n}}\n")
                code, said = self.check()
                self.assertEqual(code, 1)
                self.assertIn("hall/door.cpp:5: ", said)

    def test_a_single_word_that_is_shown_is_named(self):
        self.plant("src/hall/door.h", 'inline void f(QLabel *label) { label->setText(u"Closed"_s); }\n')
        code, said = self.check()
        self.assertEqual(code, 1)
        self.assertIn('door.h:1: "Closed"', said)

    def test_what_is_not_for_people_is_passed_over(self):
        self.plant("src/hall/door.cpp", r"""#include "quillon/text with blank.h"
// A comment: "The file is gone."
/* Another: "The file is gone." */
static_assert(sizeof(int) == 4, "an int has four octets");
void f(QWidget *form)
{
    reportFault(u"the file is gone: '"_s + (name + u" was here"_s) + u'"');
    send("MAIL FROM:<" + from + "> SIZE=");
    out += "Content-Type: text/plain; charset=utf-8";
    form->findChild<QLabel *>(u"lbl(14)"_s)->setText(QString());
    match(u"[:.\\s]+$"_s, u" | "_s, u"<a href=x>"_s, '"', 1'000);
}
""")
        self.assertEqual(self.check(), (0, ""))

    def test_a_sentence_that_the_language_file_lacks_is_named(self):
        self.plant("tips.dll", TIPS.replace("SILENCE=", "QUIET="))
        code, said = self.check()
        self.assertEqual(code, 1)
        self.assertIn("halltexts.h:2: tips.dll has another text for [Hall] SILENCE, or none", said)

    def test_a_sentence_with_another_text_is_named(self):
        self.plant("tips.dll", TIPS.replace("Nobody", "Somebody"))
        code, said = self.check()
        self.assertEqual(code, 1)
        self.assertIn("[Hall] SILENCE", said)

    def test_a_text_for_nobody_is_named(self):
        self.plant("tips.dll", TIPS + "NOISE=Everybody speaks.\r\n")
        code, said = self.check()
        self.assertEqual(code, 1)
        self.assertIn("nobody asks for [Hall] NOISE", said)

    def test_a_sentence_that_cannot_be_read_is_named(self):
        self.plant("src/hall/halltexts.h", TABLE + "inline constexpr OwnText noise{section, KEY, ENGLISH};\n")
        code, said = self.check()
        self.assertEqual(code, 1)
        self.assertIn("halltexts.h: a sentence is written otherwise", said)


if __name__ == "__main__":
    unittest.main()
