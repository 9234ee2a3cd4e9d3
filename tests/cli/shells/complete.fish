# complete.fish FOLDER: for each line on standard input, prints what the completion in FOLDER offers
# after it, on one line.
source $argv[1]/tintora-cli.fish
while read -l line
    # A tab stands before the descriptions.
    echo (complete -C $line | string replace -r '\t.*' '')
end
