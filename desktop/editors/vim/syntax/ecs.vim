" Vim syntax file
" Language: scripts of Kinsort (*.ecs)
" Written by script_reference from the tables of the language; change those instead.

if exists('b:current_syntax')
  finish
endif

syntax case ignore
syntax sync fromstart

syntax match ecsNumber /\<\%(0x\x\+\|\d\+\)\>/
syntax match ecsOperator /[!=<>]=\|!\?\^\|[<>]/
syntax match ecsLabel /^\s*\zs\S.*:\ze\s*$/
syntax match ecsKeyword /^\s*\zs\%(debug\|updatestate\|eof\|fileclose\|removeselectitems\|else\|endif\|exitall\|exit\|do\|for\|next\|while\|continue\|break\|goto\|if\|var\)\ze\%(\s\|$\)/
syntax match ecsCommand /^\s*\zs\%(appendcsvselectitem\|appendselectitem\|backgroundimage\|bomout\|call\|exec\|exrun\|favoritejump\|filejump\|fileopen\|fileopenmode\|filewritea\|filewritew\|folderjump\|fullstateopen\|fullstateopenex\|getselectitems\|include\|listinnerparam\|messagebox\|messageboxok\|messageboxyn\|operationmode\|postmessage\|postmessage1\|postmessage2\|postmessageall\|postmessagebar\|postmessagetab\|postwait\|removeselectitems\|run\|select\|sendmessage\|sendmessageall\|setclipboardtext\|setcodepage\|shell\|speachflag\|speachpitch\|speachratespeed\|speachvolume\|speechflag\|speechpitch\|speechratespeed\|speechvolume\|system_command\|tabletmode\|ubjump\|wait\|writeregnum\|writeregstring\)\ze\s*=/
syntax match ecsOption /^\s*\zs\%(commandlineoption\|bootdir\|bootmode\|showwindow\|timeout\|runwait\|sendinfomode\|multicommandmode\|shiftsilentmode\|filter\|exitloopcount\|checkgrammar\|openmode\|runas\)\ze\s*=/
syntax match ecsFunction /\%(=\s*\)\@<=\%(Call\|csv\|detectcodepage\|detectcodepagejpn\|double\|Exec\|Exist\|fileallread\|fileread\|find\|GetClipboardText\|GetExt\|GetName\|GetPath\|GetSystemMetrics\|IsDirectory\|IsFile\|left\|Length\|MainWindowPosition\|messagebox\|messageboxok\|messageboxyn\|padding\|random\|RemoveLastSeparator\|replace\|right\|string\|SubString\|trimleft\|trimright\)\ze\s*\%(,\|$\)/
syntax match ecsFolder /%\h\w*%/
syntax match ecsToken /\C\%(?SelectedCount?\|?ScriptName?\|?ScriptPath?\|?Date?\|?Time?\|?Year?\|?Month?\|?Day?\|?Hour?\|?Minute?\|?Second?\|?Week?\|?WEEK?\|?ShellTime?\|?Drive?\|?Dir?\|?NowDir?\|?nowdir?\|?TargetDir?\|?TargetDrive?\|?SelFile?\|?selfile?\|?FileName?\|?Name?\|?Ext?\|?filename?\|?name?\|?ext?\|?selpath?\|?SelPath?\|?SelParent?\)/
syntax match ecsComment /^\s*\/\/.*/
syntax region ecsEnd start=/^\s*EOF\s*$/ end=/\%$/

highlight default link ecsNumber Number
highlight default link ecsOperator Operator
highlight default link ecsLabel Label
highlight default link ecsKeyword Statement
highlight default link ecsCommand Identifier
highlight default link ecsOption PreProc
highlight default link ecsFunction Function
highlight default link ecsFolder Special
highlight default link ecsToken Special
highlight default link ecsComment Comment
highlight default link ecsEnd Comment

let b:current_syntax = 'ecs'
