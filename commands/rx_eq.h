// Live receive equalisation: DFE and VGA; and what the receive caches share with it.
#pragma once

#include "commands/link_table.h"

CmdStatus showRxParamsCmdHandler(int wordCount, char* words[]);
CmdStatus setRxParamsCmdHandler(int wordCount, char* words[]);
CmdStatus showDFECmdHandler(int wordCount, char* words[]);
CmdStatus setDFECmdHandler(int wordCount, char* words[]);
CmdStatus setDFEStateCmdHandler(int wordCount, char* words[]);
CmdStatus showVGACmdHandler(int wordCount, char* words[]);
CmdStatus setVGACmdHandler(int wordCount, char* words[]);

void printDfeModeRow(const RxTable& table);

// The rows "pole", "peak" and "amax".
void printVgaRows(const RxTable& table);
