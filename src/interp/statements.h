#pragma once

// Statements, executed straight from the text. The token class that a statement leaves behind
// (Scanner::tokenCode) tells the enclosing ones what happened: classBreak, classContinue or
// classReturn ask them to stop, classSkipped marks a consumed bracket group.

namespace vexa {

// Executes one statement, or a whole block when the next token is `{`, or the rest of a block when
// it is `:`. With automatic printing, expression statements that begin with `!` or `@` write their
// result while the matrix print limit lasts.
void executeStatement();
// The statements of a block whose `{` has been read.
void executeBlockStatements();

// How the brace block of an `exec` list ended. The cursor stands after the block in every case.
enum class BlockEnd { completed, broken, continued };
// Executes the block whose `{` is the next token, inside an expression: `return` raises key 49.
BlockEnd executeBlockInExpression();

}  // namespace vexa
