"""What a mutant is, and the tables that say what is changed into what."""

import dataclasses
import re

# What the compiler decides: nothing that is chosen at run time can stand there.
COMPILE_TIME = {
    "ConstantExpr", "StaticAssertDecl", "EnumDecl", "ConceptDecl", "RequiresExpr", "CXXNoexceptExpr",
    "UnaryExprOrTypeTraitExpr", "TypeTraitExpr", "ClassTemplateSpecializationDecl",
    "ClassTemplatePartialSpecializationDecl", "VarTemplateSpecializationDecl", "TypeAliasDecl",
    "TypedefDecl", "UsingDecl", "CXXDefaultArgExpr", "CXXDefaultInitExpr", "TemplateArgument",
    "NonTypeTemplateParmDecl", "TemplateTypeParmDecl", "ConceptSpecializationExpr",
}
FUNCTIONS = {"FunctionDecl", "CXXMethodDecl", "CXXConstructorDecl", "CXXDestructorDecl",
             "CXXConversionDecl"}
TRANSPARENT = {"ImplicitCastExpr", "MaterializeTemporaryExpr", "CXXBindTemporaryExpr",
               "ExprWithCleanups", "SubstNonTypeTemplateParmExpr"}
CALLS = {"CallExpr", "CXXMemberCallExpr"}
CONSTRUCTIONS = {"CXXConstructExpr", "CXXTemporaryObjectExpr", "CXXUnresolvedConstructExpr",
                 "ParenListExpr", "InitListExpr"}
LITERALS = {"IntegerLiteral", "FloatingLiteral", "CharacterLiteral", "StringLiteral",
            "CXXBoolLiteralExpr", "CXXNullPtrLiteralExpr", "UserDefinedLiteral"}
REMOVABLE = CALLS | {"CXXOperatorCallExpr", "CompoundAssignOperator", "CXXThrowExpr", "ContinueStmt",
                     "BreakStmt", "CXXDeleteExpr"}
# Room for what comes has no effect that a test could see; a process that ends for a programmer's
# mistake says why in words that are nobody's contract.
WITHOUT_EFFECT = {"reserve", "shrink_to_fit"}
ONLY_FOR_ROOM = {("BinaryCookies", "makeRoom"), ("BinaryCookies", "writtenLength")}
WITHOUT_WORDS = {"fatalError", "log"}
SYMMETRIC = {"min", "max", "equal", "__builtin_add_overflow"}
OPERATORS = {
    "<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"),
    "==": ("!=",), "!=": ("==",),
    "+": ("-",), "-": ("+",), "*": ("/",), "/": ("*",), "%": ("*",),
    "<<": (">>",), ">>": ("<<",), "&": ("|",), "|": ("&",), "^": ("&",),
    "&&": ("||",), "||": ("&&",),
}
ASSIGNMENTS = {"+=": "-=", "-=": "+=", "*=": "/=", "|=": "&=", "&=": "|=", "^=": "&=", "<<=": ">>=",
               ">>=": "<<="}
NEVER_EMPTY = re.compile(r"iterator|\(lambda at|\(\*\)|nullptr_t|initializer_list|nullopt_t")
TOKEN = re.compile(r'"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'|//[^\n]*|/\*.*?\*/|\s+', re.DOTALL)


@dataclasses.dataclass(frozen=True)
class Insertion:
    """Text around a part of a file. `@` stands for the question whether the mutant is chosen."""

    begin: int
    end: int
    before: str
    after: str = ""


@dataclasses.dataclass(frozen=True)
class Mutant:
    """One change. What is `constant` may be asked by the compiler too, which gets the original; in
    `table` is where the word constexpr stands that has to go, if one has."""

    kind: str
    begin: int
    original: str
    mutated: str
    insertions: tuple
    constant: bool = False
    table: object = None


@dataclasses.dataclass(frozen=True)
class Context:
    constant: bool = False  # a constexpr function: asks only where it runs
    wordless: bool = False
    returns_reference: bool = False
    deduced: bool = False  # the body of a lambda, which may have no type to return but its value's
    table: object = None


def on_one_line(text):
    """Code without comments and line breaks, outside its literals."""
    def replaced(found):
        token = found.group()
        return token if token[0] in "\"'" else " "
    return TOKEN.sub(replaced, text).strip()
