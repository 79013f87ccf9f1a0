autocmd BufNewFile,BufRead *.ecs setfiletype ecs
