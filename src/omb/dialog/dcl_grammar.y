/* The grammar of the dialog language. What a statement does is in dcl_actions.h.

   Mistakes that are often made have productions of their own, so that the message can say what is
   wrong. A token that fits nowhere is "Syntax error"; the parser then drops tokens until a
   statement can begin, and reports the next one only when three tokens were taken. */

%define api.prefix {dlg_}
%define api.pure full
%define api.value.type {dlg_token_value}
%define api.token.prefix {TOKEN_}
%param {cl_dcl_loader& loader}
/* Behind a named mistake the error token could begin a statement or end that one: it ends it. */
%expect 1

%code requires {
#include "omb/dialog/dcl_loader.h"
}

%code {
#include "omb/dialog/dcl_keywords.h"

#include <string>
#include <string_view>

// The stack does not grow: a file that nests deeper is told so.
#define YYINITDEPTH 200
#define YYMAXDEPTH 200

static int dlg_lex(dlg_token_value* value, cl_dcl_loader& loader) {
    const int code = loader.dlg_lex();
    *value = loader.take_value();
    return code;
}

static void dlg_error(cl_dcl_loader& loader, const char* message) {
    const bool is_overflow = std::string_view(message) == "memory exhausted";
    loader.dlg_error(is_overflow ? "Parser stack overflow" : "Syntax error");
}
}

%token DCL_COMMAND 257
%token DCL_COMMAND_VARIABLE 258
%token DCL_CONTROL 259
%token DCL_DIALOG 260
%token DCL_CONSTANT 261
%token DCL_INT_VARIABLE 262
%token DCL_DOUBLE_VARIABLE 263
%token DCL_DOUBLE_CONSTANT 264
%token DCL_LOCAL_VARIABLE 265
%token DCL_STRING_CONSTANT 266
%token DCL_STRING_CONSTANT_SINGLE 267
%token DCL_STRING_VARIABLE 268
%token DCL_VALUE_TABLE 269
%token DCL_DOTTED_NAME 270

/* A head whose group never opens has its control closed again. */
%destructor { loader.actions().end_group(); } group_head

%%

file: statement_list ;

statement_list: %empty | statement_list statement ;

statement:
    group
  | assignment
  | bad_assignment_no_semicolon
  | bad_statement ';'
  | bad_statement
  | bad_statement error
  | bad_statement error ';'
  ;

group:
    group_head '{' statement_list '}'   { static_cast<void>($1); loader.actions().end_group(); }
  | '{' statement_list '}'
      { loader.dlg_error("Unexpected '{}' group. Not preceeded by : dialog or a control name."); }
  ;

group_head:
    DCL_CONTROL                         { $$ = $1; loader.actions().new_control($1.number); }
  | string ':' DCL_DIALOG               { $$ = $1; loader.actions().start_dialog($1.text); }
  | string ':' DCL_CONTROL              { $$ = $1; loader.actions().define_control($1.text, $3.number); }
  | string ':' string                   { $$ = $1; loader.actions().define_control_from($1.text, $3.text); }
  ;

string: DCL_STRING_CONSTANT ;

assignment:
    string ';'                          { loader.actions().include_control($1.text); }
  | DCL_INT_VARIABLE '=' DCL_CONSTANT ';'
      { loader.actions().set_int($1.number, $3); }
  | DCL_DOUBLE_VARIABLE '=' DCL_CONSTANT ';'
      { loader.actions().set_double($1.number, $3); }
  | DCL_DOUBLE_VARIABLE '=' DCL_DOUBLE_CONSTANT ';'
      { loader.actions().set_double($1.number, $3); }
  | DCL_STRING_VARIABLE '=' string ';'
      { loader.actions().set_string_checked($1.number, $3.text); }
  | DCL_STRING_VARIABLE '=' DCL_STRING_CONSTANT_SINGLE ';'
      { loader.actions().set_translated($1.number, $3.text); }
  | DCL_STRING_VARIABLE '=' DCL_DOUBLE_CONSTANT ';'
      { loader.actions().set_string($1.number, $3); }
  | DCL_STRING_VARIABLE '=' DCL_CONSTANT ';'
      { loader.actions().set_string($1.number, $3); }
  | DCL_STRING_VARIABLE '=' string DCL_DOTTED_NAME ';'
      { loader.actions().refuse_member(); }
  | DCL_VALUE_TABLE string '=' DCL_CONSTANT ';'
      { loader.actions().dcl_add_to_value_table($2.text, $4, {}); }
  | DCL_VALUE_TABLE '(' DCL_CONSTANT ')' string '=' DCL_CONSTANT ';'
      { loader.actions().dcl_add_to_value_table($5.text, $7, $3); }
  | command_member '=' command ';'
  | command_member '{' command_list '}'
  ;

command_member: DCL_COMMAND_VARIABLE    { loader.actions().dcl_start_command_list($1.number); } ;

command_list: command ';' | command_list command ';' ;

command:
    call_head arguments ')'             { loader.actions().end_command(); }
  | print_head argument                 { loader.actions().end_command(); }
  | string                              { loader.actions().refuse_command(); }
  ;

call_head:
    DCL_COMMAND '('                     { loader.actions().dcl_start_command($1.text, {}); }
  | DCL_LOCAL_VARIABLE '=' DCL_COMMAND '('
      { loader.actions().dcl_start_command($3.text, $1.text); }
  ;

print_head: '!'                         { loader.actions().dcl_start_command("dc_print", {}); } ;

arguments: %empty | argument | arguments ',' argument ;

argument:
    DCL_LOCAL_VARIABLE                  { loader.actions().dcl_add_parameter($1, 2); }
  | DCL_DOUBLE_CONSTANT                 { loader.actions().dcl_add_parameter($1, 1); }
  | DCL_CONSTANT                        { loader.actions().dcl_add_parameter($1, 1); }
  | string                              { loader.actions().dcl_add_parameter($1, 1); }
  ;

bad_assignment_no_semicolon:
    DCL_STRING_VARIABLE '=' string next_token
      { loader.dlg_error_with_token("Missing semicolon after string constant"); }
  | DCL_STRING_VARIABLE '=' DCL_STRING_CONSTANT_SINGLE next_token
      { loader.dlg_error_with_token("Missing semicolon after translated string"); }
  | DCL_STRING_VARIABLE '=' DCL_DOUBLE_CONSTANT next_token
      { loader.dlg_error_with_token("Missing semicolon after real constant"); }
  | DCL_STRING_VARIABLE '=' DCL_CONSTANT next_token
      { loader.dlg_error_with_token("Missing semicolon after int constant"); }
  | DCL_DOUBLE_VARIABLE '=' DCL_DOUBLE_CONSTANT next_token
      { loader.dlg_error_with_token("Missing semicolon after real value"); }
  | DCL_DOUBLE_VARIABLE '=' DCL_CONSTANT next_token
      { loader.dlg_error_with_token("Missing semicolon after int value"); }
  | DCL_INT_VARIABLE '=' DCL_CONSTANT next_token
      { loader.dlg_error_with_token("Missing semicolon after int constant"); }
  | DCL_CONTROL next_token
      { loader.dlg_error_with_token("Missing semicolon"); }
  | DCL_STRING_CONSTANT_SINGLE next_token
      { loader.dlg_error_with_token("Missing semicolon after string"); }
  | string next_token
      { loader.dlg_error_with_token("Missing semicolon after string"); }
  ;

bad_statement:
    DCL_DOUBLE_VARIABLE '=' string
      {
        loader.dlg_error_with_token(
            "Cannot set this variable to a string. Floating point value expected.");
      }
  | DCL_INT_VARIABLE '=' DCL_DOUBLE_CONSTANT
      {
        loader.dlg_error_with_token(
            "Cannot set this variable to a floating point value. Integer value expected.");
      }
  | DCL_INT_VARIABLE '=' string
      {
        loader.dlg_error_with_token("Cannot set this variable to a string. Integer value expected.");
      }
  | string '=' unknown_value
      { loader.dlg_error_with_token("Unknown variable to left of '='"); }
  | DCL_VALUE_TABLE '(' filter_value
      { loader.actions().refuse_filter($3); }
  | error
      {
        // Without a token at hand this is the parser that drops tokens: it has been told.
        if (yychar != TOKEN_DLG_EMPTY) {
            loader.dlg_error_with_token("Unknown Syntax error in dialog");
        }
      }
  ;

unknown_value: DCL_CONSTANT | DCL_DOUBLE_CONSTANT | string ;

filter_value: string | DCL_STRING_CONSTANT_SINGLE | DCL_DOUBLE_CONSTANT | DCL_CONSTANT ;

next_token:
    DCL_DOUBLE_CONSTANT | DCL_CONSTANT | DCL_STRING_CONSTANT | DCL_STRING_CONSTANT_SINGLE
  | DCL_CONTROL | DCL_INT_VARIABLE | DCL_DOUBLE_VARIABLE | DCL_STRING_VARIABLE
  | DCL_COMMAND_VARIABLE
  ;

%%

static_assert(static_cast<int>(TOKEN_DCL_COMMAND) == static_cast<int>(DCL_COMMAND) &&
              static_cast<int>(TOKEN_DCL_DOTTED_NAME) == static_cast<int>(DCL_DOTTED_NAME));
