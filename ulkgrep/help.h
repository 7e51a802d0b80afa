// What --help and --version print. The manual, ulkgrep.1, says the same of the options.
#ifndef ULKGREP_HELP_H
#define ULKGREP_HELP_H

// The forms of the command line, a line for each.
extern const char usageText[];

void printHelp(void);
void printVersion(void);

#endif
