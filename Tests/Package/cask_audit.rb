# Checks a Homebrew cask by the rules that `brew style` and `brew audit` have for casks, as far as they
# need no Mac and no network: ruby cask_audit.rb CASK.rb…
#
# Prints what is wrong, and fails if anything is. rubocop checks the layout.

# The order of stanzas. Those of one group follow each other, and a blank line separates groups.
GROUPS = [
  [:arch],
  [:version, :sha256],
  [:language],
  [:url, :name, :desc, :homepage],
  [:livecheck],
  [:deprecate!, :disable!],
  [:auto_updates, :conflicts_with, :depends_on, :container],
  [:suite, :app, :pkg, :installer, :binary, :manpage, :service, :artifact, :stage_only],
  [:preflight],
  [:postflight],
  [:uninstall_preflight],
  [:uninstall_postflight],
  [:uninstall],
  [:zap],
  [:caveats],
].freeze
ORDER = GROUPS.flatten.freeze
REQUIRED = [:version, :sha256, :url, :name, :desc, :homepage, :app, :zap].freeze
DIRECTIVES = [:early_script, :launchctl, :quit, :signal, :login_item, :kext, :script, :pkgutil, :delete,
              :trash, :rmdir].freeze
MACOS = [:ventura, :sonoma, :sequoia, :tahoe].freeze

Stanza = Struct.new(:name, :values, :options, :line)

# Records the stanzas of a cask, or of a block in it.
class Recorder < BasicObject
  def self.read(&block)
    recorder = new
    recorder.instance_eval(&block)
    recorder.__stanzas__
  end

  def initialize
    @stanzas = []
  end

  def __stanzas__
    @stanzas
  end

  def appdir
    "/Applications"
  end

  def method_missing(name, *values, **options, &block)
    if values.empty? && options.empty? && !block
      return @stanzas.find { |stanza| stanza.name == name }.values.first
    end
    values << ::Recorder.read(&block) if block
    @stanzas << ::Stanza.new(name, values, options, ::Kernel.caller_locations(1, 1).first.lineno)
  end

  def respond_to_missing?(*)
    true
  end
end

def cask(token, &block)
  $token = token
  $stanzas = Recorder.read(&block)
end

def first(name)
  $stanzas.find { |stanza| stanza.name == name }&.values&.first
end

def check_stanzas
  names = $stanzas.map(&:name)
  (names - ORDER).each { |name| yield "#{name} is not a stanza" }
  (REQUIRED - names).each { |name| yield "#{name} is missing" }
  known = names & ORDER
  yield "the order should be #{ORDER & known}" unless known == (ORDER & known)
end

def check_blank_lines(lines)
  $stanzas.each_cons(2) do |before, after|
    line = after.line - 1
    line -= 1 while lines[line - 1].lstrip.start_with?("#")
    together = GROUPS.any? { |group| group.include?(before.name) && group.include?(after.name) }
    next if lines[line - 1].strip.empty? != together

    yield "#{after.name} should #{together ? "directly follow" : "be a line away from"} #{before.name}"
  end
end

def check_texts(path)
  yield "the token should be the file's name, in lower case" unless
    $token =~ /\A[a-z0-9]+(-[a-z0-9]+)*\z/ && $token == File.basename(path, ".rb")
  yield "the version should be digits and dots" unless first(:version) =~ /\A\d+(\.\d+)+\z/
  yield "the hash should be 64 hexadecimal digits" unless first(:sha256) =~ /\A[0-9a-f]{64}\z/
  description = first(:desc).to_s
  yield "the description should begin with a capital" unless description =~ /\A[A-Z]/
  yield "the description should not begin with an article" if description =~ /\A(a|an|the)\b/i
  yield "the description should not begin with the name" if description.start_with?(first(:name).to_s)
  yield "the description should not name the platform" if description =~ /\b(mac( ?os( ?x)?)?|os ?x)\b/i
  yield "the description should not end with a full stop" if description.end_with?(".")
  yield "the description should have at most 80 characters" if description.length > 80
end

def check_addresses(source)
  addresses = [first(:url), first(:homepage), *(first(:livecheck) || []).map { |each| each.values.first }]
  addresses.grep(/\Ahttp:/) { |address| yield "#{address} should be https" }
  yield "the url should be made of the version" unless source[/^  url .*/].to_s.include?('#{version}')
  hosts = [first(:url), first(:homepage)].map { |address| address.to_s[%r{//([^/]+)}, 1] }
  yield "the url is not on the home page's host and needs verified" if hosts.uniq.length != 1
end

def check_installation(source)
  systems = $stanzas.select { |stanza| stanza.name == :depends_on }.map { |each| each.options[:macos] }
  yield "depends_on should say which macOS, such as \">= :ventura\"" unless
    systems.any? { |system| system =~ /\A>= :(\w+)\z/ && MACOS.include?($1.to_sym) }
  yield "binary should be in appdir" if source =~ /^  binary "(?!\#{appdir})/
end

def check_removal
  $stanzas.select { |stanza| [:uninstall, :zap].include?(stanza.name) }.each do |stanza|
    directives = stanza.options.keys
    (directives - DIRECTIVES).each { |each| yield "#{each} is not a directive of #{stanza.name}" }
    sorted = DIRECTIVES & directives
    yield "the order of #{stanza.name} should be #{sorted}" unless (directives & DIRECTIVES) == sorted
    paths = Array(stanza.options[:trash]) + Array(stanza.options[:delete])
    yield "the paths of #{stanza.name} should be sorted" unless paths == paths.sort
    paths.grep_v(%r{\A(~/|/)}) { |path| yield "#{path} should be absolute or in the home folder" }
  end
end

complaints = 0
ARGV.each do |path|
  complain = lambda do |complaint|
    puts "#{path}: #{complaint}"
    complaints += 1
  end
  source = File.read(path)
  load path
  check_stanzas(&complain)
  check_blank_lines(source.lines, &complain)
  check_texts(path, &complain)
  check_addresses(source, &complain)
  check_installation(source, &complain)
  check_removal(&complain)
end
exit complaints.zero?
